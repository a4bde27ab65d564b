# The release: install rules and the archive of `--target package`.
#   win32:  bin/orb.dll, lib/orb.lib (import library for Microsoft's linker),
#           lib/liborb.dll.a (for mingw), lib/orb.def, include/, the README and
#           the licence, as orb-<version>-win32.zip
#   linux:  lib/liborb.so with its soname and version, include/,
#           lib/pkgconfig/orb.pc, share/doc/orb/, as orb-<version>-linux.tar.gz
# Both carry lib/cmake/orb/ (orbConfig.cmake, its version file and the
# imported target orb::orb).
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

install(TARGETS orb EXPORT orbTargets
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
        FILES_MATCHING PATTERN "*.h")
install(EXPORT orbTargets NAMESPACE orb:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/orb)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/orbConfig.cmake.in
                              ${PROJECT_BINARY_DIR}/orbConfig.cmake
                              INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/orb)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/orbConfigVersion.cmake
                                 COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/orbConfig.cmake ${PROJECT_BINARY_DIR}/orbConfigVersion.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/orb)

if(WIN32)
  set(ORB_GEN_DIR ${PROJECT_BINARY_DIR}/src/gen)
  # The import library Microsoft's linker reads, with the same imports as
  # liborb.dll.a (undecorated names in the DLL, callee-pops symbols with their
  # argument bytes) but in the short import format of Microsoft's own tools:
  # binutils' dlltool writes members without the safe exception handler
  # table, which a linker asked for /SAFESEH (the x86 default) rejects.
  find_program(ORB_LLVM_DLLTOOL NAMES llvm-dlltool REQUIRED)
  add_custom_command(OUTPUT ${PROJECT_BINARY_DIR}/lib/orb.lib
    COMMAND ${ORB_LLVM_DLLTOOL} -m i386 -d ${ORB_GEN_DIR}/orb_implib.def -D orb.dll -k
            -l ${PROJECT_BINARY_DIR}/lib/orb.lib
    DEPENDS orb ${ORB_GEN_DIR}/orb_implib.def
    COMMENT "Writing orb.lib for Microsoft's linker" VERBATIM)
  add_custom_target(orb_msvc_import ALL DEPENDS ${PROJECT_BINARY_DIR}/lib/orb.lib)
  install(FILES ${PROJECT_BINARY_DIR}/lib/orb.lib ${ORB_GEN_DIR}/orb.def
          DESTINATION ${CMAKE_INSTALL_LIBDIR})
  install(FILES ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION .)
  set(CPACK_GENERATOR ZIP)
  set(CPACK_SYSTEM_NAME win32)
else()
  set_target_properties(orb PROPERTIES VERSION ${PROJECT_VERSION}
                                       SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
  configure_file(${PROJECT_SOURCE_DIR}/cmake/orb.pc.in ${PROJECT_BINARY_DIR}/orb.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/orb.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
  install(FILES ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/LICENSE
          DESTINATION ${CMAKE_INSTALL_DOCDIR})
  set(CPACK_GENERATOR TGZ)
  set(CPACK_SYSTEM_NAME linux)
endif()

set(CPACK_PACKAGE_NAME orb)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_FILE_NAME orb-${PROJECT_VERSION}-${CPACK_SYSTEM_NAME})
set(CPACK_INCLUDE_TOPLEVEL_DIRECTORY ON)
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/package)
include(CPack)
