"""./kiv run in a session that has an agent already. The agent here is a decoy: a copy of sleep under its name."""
import os
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

SOURCE = Path(__file__).resolve().parents[3]
DISPLAY = f':decoy-{os.getpid()}'


def bash(commands, display=DISPLAY):
    done = subprocess.run(['bash', '-euc', f'fail() {{ echo "$*"; exit 1; }}; source tools/kiv/session.bash; {commands}'],
                          cwd=SOURCE, env={'PATH': os.environ['PATH'], 'DISPLAY': display}, capture_output=True,
                          text=True, check=False)
    return done.returncode, done.stdout


class AgentOfTheSession(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.program = Path(folder.name, 'kivmenua')
        shutil.copy('/bin/sleep', self.program)
        self.decoy = subprocess.Popen([self.program, '100'], env={'DISPLAY': DISPLAY})
        self.addCleanup(self.decoy.wait)
        self.addCleanup(self.decoy.kill)

    def test_is_found_in_its_own_display_only(self):
        self.assertEqual(bash('agents_here'), (0, f'{self.decoy.pid}\n'))
        self.assertEqual(bash('agents_here', DISPLAY + '0'), (0, ''))
        self.assertEqual(bash('agents_here', ':'), (0, ''))

    def test_is_found_whichever_screen_of_the_display_is_meant(self):
        with subprocess.Popen([self.program, '100'], env={'DISPLAY': ':987654'}) as other:
            try:
                self.assertEqual(bash('agents_here', ':987654.0'), (0, f'{other.pid}\n'))
                self.assertEqual(bash('agents_here', ':98765'), (0, ''))
            finally:
                other.kill()

    def test_is_found_after_an_upgrade_has_taken_its_file_away(self):
        self.program.unlink()
        self.assertEqual(bash('agents_here'), (0, f'{self.decoy.pid}\n'))
        self.assertEqual(bash(f'program_of {self.decoy.pid}'), (0, f'{self.program}\n'))

    def test_makes_room_and_that_is_said(self):
        # Its end has to be seen by its parent, which is this test, before the kernel forgets it.
        waiting = subprocess.Popen(['bash', '-c', f'cd {SOURCE} && fail() {{ exit 1; }} && '
                                    'source tools/kiv/session.bash && displace_agent && '
                                    'printf "%s\\n" "${displaced_environment[@]}"'],
                                   env={'PATH': os.environ['PATH'], 'DISPLAY': DISPLAY}, stdout=subprocess.PIPE,
                                   text=True)
        self.decoy.wait()
        said, _ = waiting.communicate()
        self.assertEqual(waiting.returncode, 0)
        self.assertTrue(said.startswith(f'{self.program} (process {self.decoy.pid}) ends for now'), said)
        self.assertEqual(said.splitlines()[-1], f'DISPLAY={DISPLAY}', 'its environment is kept for its return')

    def test_comes_back_at_the_end_with_its_own_environment(self):
        self.program.unlink()
        self.program.write_text('#!/bin/sh\necho "$HOME,$DBUS_SESSION_BUS_ADDRESS" >"$0.part" && mv "$0.part" "$0.home"\n')
        self.program.chmod(0o755)
        status, said = bash(f'displaced={self.program}; displaced_environment=(HOME=/of/the/session); '
                            f'DBUS_SESSION_BUS_ADDRESS=of-the-demo; export DBUS_SESSION_BUS_ADDRESS; replace_agent; '
                            f'for _ in {{1..200}}; do [[ ! -e {self.program}.home ]] || break; sleep 0.05; done; '
                            f'cat {self.program}.home')
        self.assertEqual(status, 0, said)
        self.assertEqual(said, f'{self.program} takes its place again.\n/of/the/session,\n')

    def test_nobody_makes_room_where_there_is_nobody(self):
        self.assertEqual(bash('displace_agent; replace_agent', DISPLAY + '0'), (0, ''))


if __name__ == '__main__':
    unittest.main()
