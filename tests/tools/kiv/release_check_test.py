"""./kiv release-check: what it asks for, and that each of it counts. What takes long are decoys that write down how
they were called; git and the archive are real."""
import os
import subprocess
import tempfile
import unittest
from pathlib import Path

SOURCE = Path(__file__).resolve().parents[3]
STEPS = ['kiv check', 'kiv test CI=true', 'package --twice', 'cmake --preset release --log-level=WARNING',
         'cmake --build --preset release', 'cmake --install build/release --prefix']
KIV = '''#!/bin/bash
echo "kiv $*${CI:+ CI=$CI}" >>"$STEPS"
[[ "kiv $*" != "$BROKEN"* ]]
'''
CMAKE = '''#!/bin/bash
echo "cmake $*" >>"$STEPS"
[[ "cmake $*" != "$BROKEN"* ]] || exit 1
test -e CMakeLists.txt || exit 1
[[ $1 != --install ]] || { mkdir -p "$4/bin"; cp "$0" "$4/bin/kivmenua"; }
'''


class ReleaseCheck(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.tree, self.steps = Path(folder.name, 'tree'), Path(folder.name, 'steps')
        self.programs = Path(folder.name, 'programs')
        for path, text in ((self.tree / 'kiv', KIV), (self.programs / 'cmake', CMAKE)):
            path.parent.mkdir()
            path.write_text(text)
            path.chmod(0o755)
        (self.tree / 'CMakeLists.txt').write_text('project(kivmenua VERSION 7.8.9 LANGUAGES CXX)\n')
        (self.tree / '.gitignore').write_text('/build/\n')
        self.git('init', '--quiet')
        self.git('add', '.')
        self.git('commit', '--quiet', '--message', 'All')

    def git(self, *arguments):
        subprocess.run(['git', '-c', 'user.name=A', '-c', 'user.email=a@example.org', *arguments], cwd=self.tree,
                       check=True)

    def release_check(self, broken='nothing'):
        """The status, what is said last, and the steps that were taken."""
        self.steps.unlink(missing_ok=True)
        script = ('say() { echo "$*"; }; fail() { echo "$*"; exit 1; }; install_missing() { :; }; packages_build=();'
                  f'source {SOURCE}/tools/kiv/package.bash;'
                  'package() { echo "package $*" >>"$STEPS"; [[ "package $*" != "$BROKEN"* ]]; }; release_check')
        done = subprocess.run(['bash', '-euo', 'pipefail', '-c', script], cwd=self.tree, capture_output=True, text=True,
                              check=False, env={'PATH': f'{self.programs}:{os.environ["PATH"]}', 'BROKEN': broken,
                                                'STEPS': str(self.steps)})
        taken = self.steps.read_text().splitlines() if self.steps.exists() else []
        return done.returncode, done.stdout.strip().rpartition('\n')[2], taken

    def test_takes_every_step_and_then_allows_the_release(self):
        status, said, taken = self.release_check()
        self.assertEqual((status, said), (0, 'Version 7.8.9 may be released'))
        self.assertEqual(len(taken), len(STEPS), taken)
        for step, expected in zip(taken, STEPS):
            self.assertTrue(step.startswith(expected), step)

    def test_allows_nothing_when_a_step_fails(self):
        for number, step in enumerate(STEPS):
            status, said, taken = self.release_check(step.removesuffix(' CI=true'))
            self.assertNotEqual(status, 0, step)
            self.assertNotIn('may be released', said)
            self.assertEqual(len(taken), number + 1, 'it goes on behind ' + step)

    def test_allows_nothing_while_something_is_not_committed(self):
        (self.tree / 'new').touch()
        self.assertEqual(self.release_check(), (1, 'what is not committed is in no release', []))

    def test_builds_what_is_committed_and_nothing_else(self):
        (self.tree / 'build').mkdir()
        (self.tree / 'build/left').touch()
        self.assertEqual(self.release_check()[0], 0)
        self.assertFalse((self.tree / 'build/release-check').exists(), 'it cleans up')


if __name__ == '__main__':
    unittest.main()
