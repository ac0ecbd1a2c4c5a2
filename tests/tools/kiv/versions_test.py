"""./kiv check versions finds a history that ends with another version than the project's."""
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

SOURCE = Path(__file__).resolve().parents[3]
FILES = ('CMakeLists.txt', 'CHANGELOG.md', 'debian/changelog', 'resources/linux/com.tamborel.kivmenua.metainfo.xml',
         'docs/man/kivmenua.1')


def check(file=None, old='', new=''):
    """The status and what is said, when in that file of the tree the one text stands for the other."""
    with tempfile.TemporaryDirectory() as root:
        for path in (Path(root, name) for name in FILES):
            path.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(SOURCE / path.relative_to(root), path)
        if file:
            text = Path(root, file).read_text(encoding='utf-8')
            assert old in text, f'{old} is not in {file}'
            Path(root, file).write_text(text.replace(old, new), encoding='utf-8')
        done = subprocess.run([sys.executable, '-B', SOURCE / 'tools/kiv/versions.py', root], capture_output=True,
                              text=True, check=False)
        return done.returncode, done.stdout


class Versions(unittest.TestCase):
    def setUp(self):
        text = (SOURCE / 'CMakeLists.txt').read_text(encoding='utf-8')
        self.version = text.partition('project(kivmenua VERSION ')[2].split()[0]

    def test_those_of_the_tree_agree(self):
        self.assertEqual(check(), (0, ''))

    def test_each_file_is_compared(self):
        for file, named in ((FILES[1], 'CHANGELOG.md'), (FILES[2], 'debian/changelog'), (FILES[3], 'the metainfo')):
            status, said = check(file, self.version, '99.0.1')
            self.assertEqual(status, 1, file)
            self.assertTrue(said.startswith(named + ':') and said.count('\n') == 1, said)

    def test_a_new_version_is_missed_everywhere(self):
        status, said = check('CMakeLists.txt', f'VERSION {self.version} ', 'VERSION 99.0.1 ')
        self.assertEqual((status, said.count('\n')), (1, 3), said)

    def test_the_days_are_compared(self):
        status, said = check(FILES[3], 'date="', 'date="1')
        self.assertEqual(status, 1)
        self.assertTrue(said.startswith('the metainfo:'), said)

    def test_so_are_the_days_of_manual_pages(self):
        status, said = check(FILES[4], '.TH KIVMENUA 1 "', '.TH KIVMENUA 1 "1')
        self.assertEqual(status, 1)
        self.assertTrue(said.startswith('kivmenua.1:') and said.count('\n') == 1, said)

    def test_what_is_not_released_yet_is_no_version(self):
        self.assertEqual(check('CHANGELOG.md', '## [', '## [Unreleased]\n\n- Something.\n\n## [')[0], 0)


if __name__ == '__main__':
    unittest.main()
