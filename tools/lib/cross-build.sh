# What the cross builds of tools/build-*-win32.sh share: running a noisy step
# with its output in a log, and fetching one of Debian's source packages with
# apt. Sourced, not run; the caller defines say and die and sets SUDO.

# Runs a noisy step with its output in a log; shows the end of the log on failure.
run_logged() {
  local log=$1; shift
  if ! "$@" >"$log" 2>&1; then
    tail -n 40 "$log" >&2
    die "'$*' failed; full log: $log"
  fi
}

#
#   dsc=$(debian_source_dsc PACKAGE VERSION WORKDIR)
#
# VERSION is the source version to fetch (that of the installed Linux package,
# so both builds use the same code), or empty for the newest. The package's
# files land in WORKDIR/package, apt's lists in WORKDIR/apt; a .dsc already
# there is reused. Prints the path of the .dsc.
#
# The machine's apt configuration has no deb-src lines, so apt gets a private,
# source-only copy of the machine's Debian sources (security suite dropped: it
# carries no source the builds use) with its own lists folder; the system's
# lists and package caches are left alone.
debian_source_dsc() {
  local pkg=$1 want=$2 work=$3
  local pkgdir=$work/package aptdir=$work/apt dsc=""
  if [ -n "$want" ]; then
    [ -f "$pkgdir/${pkg}_${want#*:}.dsc" ] && dsc=$pkgdir/${pkg}_${want#*:}.dsc
  else
    dsc=$(ls "$pkgdir/${pkg}"_*.dsc 2>/dev/null | sort -V | tail -n 1 || true)
  fi
  if [ -n "$dsc" ]; then
    echo "$dsc"
    return
  fi

  rm -rf "$aptdir" "$pkgdir"
  mkdir -p "$aptdir/lists/partial" "$pkgdir"
  local srclist
  if [ -f /etc/apt/sources.list.d/debian.sources ]; then
    srclist=$aptdir/src-only.sources          # deb822 stanzas, one per paragraph
    awk 'BEGIN{RS="";ORS="\n\n"} !/security/' /etc/apt/sources.list.d/debian.sources \
      | sed 's/^Types: deb$/Types: deb-src/' >"$srclist"
  else
    srclist=$aptdir/src-only.list             # one-line format
    grep -hE '^deb[[:space:]]' /etc/apt/sources.list 2>/dev/null | grep -v security \
      | sed 's/^deb[[:space:]]/deb-src /' >"$srclist" || true
  fi
  grep -q deb-src "$srclist" || die "no Debian source found in the machine's apt sources"

  local apt_opts=(-o "Dir::Etc::sourcelist=$srclist" -o Dir::Etc::sourceparts=/nonexistent
                  -o "Dir::State::Lists=$aptdir/lists"
                  -o Dir::Cache::pkgcache= -o Dir::Cache::srcpkgcache=)
  # As root, apt would hand downloads to its unprivileged user, who cannot write here.
  [ "$(id -u)" -eq 0 ] && apt_opts+=(-o APT::Sandbox::User=root)

  say "fetching the $pkg source package${want:+ $want}" >&2
  run_logged "$work/apt-update.log" $SUDO apt-get "${apt_opts[@]}" update
  [ -n "$SUDO" ] && $SUDO chown -R "$(id -u):$(id -g)" "$aptdir"
  (cd "$pkgdir" && run_logged "$work/apt-source.log" \
     apt-get "${apt_opts[@]}" source --download-only "$pkg${want:+=$want}")
  ls "$pkgdir/${pkg}"_*.dsc | sort -V | tail -n 1
}

# The source version of an installed binary package, or nothing.
debian_installed_source_version() {
  if [ "$(dpkg-query -W -f='${db:Status-Status}' "$1" 2>/dev/null || true)" = installed ]; then
    dpkg-query -W -f='${source:Version}' "$1"
  fi
}
