"""pytest plugin of tools/client_check.py: appends every test's start and final
outcome to the file named by CLIENT_CHECK_LOG as it happens, and leaves out
the tests listed in CLIENT_CHECK_SKIP (one id a line)."""

import json
import os


class _Recorder:
    def __init__(self, path, skip):
        self.out = open(path, "a", buffering=1)
        self.skip = skip
        self.outcome = {}

    def _write(self, rec):
        self.out.write(json.dumps(rec) + "\n")
        self.out.flush()

    def pytest_collection_modifyitems(self, config, items):
        left = [i for i in items if i.nodeid in self.skip]
        if left:
            items[:] = [i for i in items if i.nodeid not in self.skip]
            config.hook.pytest_deselected(items=left)

    def pytest_runtest_logstart(self, nodeid, location):
        self._write({"start": nodeid})

    def pytest_runtest_logreport(self, report):
        if report.when == "call" or report.outcome != "passed":
            if report.when != "call" and report.failed:
                outcome = "error"
            elif hasattr(report, "wasxfail"):
                outcome = "xfailed" if report.skipped else "xpassed"
            else:
                outcome = report.outcome
            old = self.outcome.get(report.nodeid)
            if old is None or old in ("passed", "xpassed"):
                self.outcome[report.nodeid] = outcome

    def pytest_runtest_logfinish(self, nodeid, location):
        self._write({"test": nodeid, "outcome": self.outcome.pop(nodeid, "passed")})

    def pytest_sessionfinish(self, session, exitstatus):
        self._write({"session": int(exitstatus)})


def pytest_configure(config):
    path = os.environ.get("CLIENT_CHECK_LOG")
    if not path:
        return
    skip = set()
    skip_file = os.environ.get("CLIENT_CHECK_SKIP")
    if skip_file and os.path.exists(skip_file):
        with open(skip_file) as f:
            skip = {line.rstrip("\n") for line in f if line.strip()}
    config.pluginmanager.register(_Recorder(path, skip), "client_check_recorder")
