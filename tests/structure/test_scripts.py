#!/usr/bin/env python3
"""What the scripts make of their words and of the machine, with stand-ins for the programs that they
start: each notes how it was called."""
import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

SCRIPTS = pathlib.Path(__file__).resolve().parents[2] / "scripts"
NOTING = 'echo "$(basename "$0") $*" >>"$CALLS"\n'


class Scripts(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.tree = pathlib.Path(folder.name)
        (self.tree / "scripts").mkdir()
        (self.tree / "bin").mkdir()
        self.calls = self.tree / "calls"
        self.calls.touch()

    def bring(self, script):
        shutil.copy(SCRIPTS / script, self.tree / "scripts" / script)

    def stand_in(self, place, does=""):
        program = self.tree / place
        program.write_text("#!/bin/sh\n" + NOTING + does)
        program.chmod(0o755)

    def run_script(self, script, *words, **environment):
        """What it ended with, and the calls of stand-ins."""
        path = f"{self.tree / 'bin'}:{os.environ['PATH']}"
        run = subprocess.run([self.tree / "scripts" / script, *words], capture_output=True, text=True,
                             env={**os.environ, "PATH": path, "CALLS": str(self.calls), **environment})
        return run, self.calls.read_text().splitlines()


class Test(Scripts):
    def setUp(self):
        super().setUp()
        self.bring("test")
        for place in ("bin/cmake", "bin/ctest", "scripts/install-packages", "scripts/skipped"):
            self.stand_in(place)

    def ctest_call(self, *words, **environment):
        run, calls = self.run_script("test", *words, **environment)
        self.assertEqual(run.returncode, 0, run.stderr)
        return [call for call in calls if call.startswith("ctest ")][-1]

    def test_the_whole_suite_runs_as_a_release_without_words(self):
        self.assertEqual(self.ctest_call(), "ctest --preset release -j 4")

    def test_preset_and_quick_may_come_in_any_order(self):
        quick = "ctest --preset asan -j 4 --label-exclude ^(time|slow)$"
        self.assertEqual(self.ctest_call("asan", "--quick"), quick)
        self.assertEqual(self.ctest_call("--quick", "asan"), quick)

    def test_the_environment_leaves_nothing_out(self):
        self.assertEqual(self.ctest_call(quick="--label-exclude ."), "ctest --preset release -j 4")

    def test_a_word_that_it_does_not_know_runs_nothing(self):
        run, calls = self.run_script("test", "--quik")
        self.assertEqual((run.returncode, calls), (2, []))
        self.assertTrue(run.stderr.startswith("usage: "))


class InstallPackages(Scripts):
    def setUp(self):
        super().setUp()
        self.bring("install-packages")
        self.stand_in("bin/id", "echo 1000")
        self.stand_in("bin/sudo", 'env -i PATH="$PATH" CALLS="$CALLS" "$@"')
        self.stand_in("bin/apt-get", 'echo "frontend ${DEBIAN_FRONTEND:-}" >>"$CALLS"\n')

    def test_a_held_package_is_there(self):
        # As dpkg-query fills in the two fields for one that is held.
        self.stand_in("bin/dpkg-query",
                      """case $2 in *db:Status-Status*) echo installed ;; *) echo "hold ok installed" ;; esac""")
        run, calls = self.run_script("install-packages")
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertFalse([call for call in calls if call.startswith("apt-get")])

    def test_what_is_missing_is_installed_without_a_question(self):
        self.stand_in("bin/dpkg-query", 'case $* in *cmake) echo config-files ;; *) echo installed ;; esac')
        run, calls = self.run_script("install-packages")
        self.assertEqual(run.returncode, 0, run.stderr)
        install = calls.index("apt-get install -q -y --no-install-recommends cmake")
        self.assertEqual(calls[install + 1], "frontend noninteractive")


class Package(Scripts):
    def test_a_former_package_does_not_stay_beside_the_new_one(self):
        self.bring("package")
        for place in ("bin/cmake", "scripts/install-packages", "scripts/source-date"):
            self.stand_in(place, "echo 0\n")
        self.stand_in("bin/cpack", "touch notchbench_2_arm64.deb\n")
        folder = self.tree / "build/release"
        folder.mkdir(parents=True)
        (folder / "notchbench_1_amd64.deb").touch()
        run, _ = self.run_script("package")
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertEqual([file.name for file in folder.iterdir()], ["notchbench_2_arm64.deb"])


class Fuzz(Scripts):
    def test_what_was_kept_under_the_name_of_a_search_is_listed(self):
        self.bring("fuzz")
        self.stand_in("bin/cmake")
        corpus = self.tree / "fuzz/corpus/pmc"
        corpus.mkdir(parents=True)
        (corpus / "sign-without-digits").touch()
        (self.tree / "build/fuzz/fuzz").mkdir(parents=True)
        found = "regression-crash-" + 20 * "0f"
        self.stand_in("build/fuzz/fuzz/fuzz_pmc", f"touch fuzz/corpus/pmc/{found}\n")
        run, _ = self.run_script("fuzz", "pmc")
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertEqual(run.stdout.splitlines()[-1], f"  fuzz/corpus/pmc/{found}")
        self.assertNotIn("sign-without-digits", run.stdout)


if __name__ == "__main__":
    unittest.main()
