"""./kiv check includes finds arrows that point the wrong way, between folders and inside them."""
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

from tools.kiv import include_directions

SOURCE = Path(__file__).resolve().parents[3]
CHECK = SOURCE / 'tools/kiv/include_directions.py'

# The rooms, and which others each may include from.
NOTIFY = {
    'notify/record': [],
    'notify/text': ['notify/record'],
    'notify/rules': ['notify/record'],
    'notify/popup': ['notify/rules', 'notify/text', 'notify/record'],
    'notify/queue': ['notify/popup', 'notify/rules', 'notify/record'],
    'notify/feed': ['notify/rules', 'notify/text', 'notify/record'],
}
PLATFORM = {
    'platform/files': [],
    'platform/data': ['platform/files'],
    'platform/images': [],
    'platform/text': [],
    'platform/alert': ['platform/text'],
}
LINUX = {
    'platform/linux/include': [],
    'platform/linux/workarounds': ['platform/linux/include'],
    'platform/linux/bus': ['platform/linux/include', 'platform/linux/workarounds'],
    'platform/linux/corefoundation': ['platform/linux/include'],
    'platform/linux/screen': ['platform/linux/include', 'platform/files'],
    'platform/linux/processes': ['platform/linux/include'],
    'platform/linux/events': ['platform/linux/include', 'platform/linux/processes', 'platform/linux/bus'],
    'platform/linux/item': ['platform/linux/include', 'platform/linux/screen', 'platform/linux/bus',
                            'platform/linux/workarounds', 'platform/images'],
}
OTHERS = {
    'fetch': [],
    'menu': [*PLATFORM],
    'shell': ['menu', *NOTIFY, *PLATFORM],
    'settings': ['notify/rules', 'notify/record', *PLATFORM],
    'tools/kivservice': ['settings', 'shell', 'menu', 'notify/rules', 'notify/record', *PLATFORM,
                         'platform/linux/include'],
}
# What a message is made of knows how its texts are measured and how its dates are kept, and no more of platform/.
DRAWN = {room: others + (['platform/data', 'platform/text'] if room == 'notify/record' else [*PLATFORM])
         for room, others in NOTIFY.items()} | PLATFORM | LINUX | OTHERS


def check(file, include, *others):
    with tempfile.TemporaryDirectory() as root:
        for path in (Path(root, name) for name in (file, *others)):
            path.parent.mkdir(parents=True)
            path.write_text(f'#include {include}\n' if path == Path(root, file) else '')
        return subprocess.run([sys.executable, '-B', CHECK, root], capture_output=True, text=True, check=False)


class IncludeDirections(unittest.TestCase):
    def test_those_of_the_tree_are_right(self):
        result = subprocess.run([sys.executable, '-B', CHECK, SOURCE], capture_output=True, text=True, check=False)
        self.assertEqual((result.stdout, result.returncode), ('', 0))

    def test_an_include_is_right_exactly_where_an_arrow_is_drawn(self):
        for room in DRAWN:
            for other in DRAWN:
                with self.subTest(room=room, other=other):
                    complaint = include_directions.complaint(f'{room}/A.cpp', f'{other}/B.h')
                    self.assertEqual(complaint is None, other == room or other in DRAWN[room], complaint)

    def test_each_include_of_the_tree_would_be_wrong_the_other_way_round(self):
        turned = 0
        for file, _, included in include_directions.includes(SOURCE):
            if file.startswith(('tests/', 'bench/', 'fuzz/')) or '/' not in included:
                continue
            room, other = (include_directions.room_of(path.rpartition('/')[0], include_directions.ALLOWED)
                           for path in (file, included))
            if room != other:
                self.assertIsNotNone(include_directions.complaint(included, file), f'{included} may include {file}')
                turned += 1
        self.assertGreater(turned, 100)

    def test_arrows_that_point_down_are_let_pass(self):
        for file, include in [
                ('shell/A.cpp', '"notify/queue/B.h"'),
                ('menu/A.cpp', '"platform/alert/B.h"'),
                ('menu/A.cpp', '<Carbon/Carbon.h>'),
                ('menu/A.cpp', '<QString>'),
                ('notify/feed/A.cpp', '"notify/rules/B.h"'),
                ('notify/popup/A.cpp', '"platform/B.h"'),
                ('notify/popup/A.cpp', '"notify/popup/B.h"'),
                ('platform/data/A.cpp', '"platform/files/B.h"'),
                ('platform/linux/item/A.cpp', '"platform/linux/workarounds/B.h"'),
                ('tools/kivservice/A.cpp', '"platform/linux/include/B.h"'),
                ('tests/platform/linux/item/A.cpp', '"platform/linux/item/B.h"'),
                ('tests/session/A.cpp', '"notify/queue/B.h"')]:
            with self.subTest(file=file, include=include):
                self.assertEqual((check(file, include).stdout, check(file, include).returncode), ('', 0))

    def test_arrows_that_point_up_or_sideways_are_named(self):
        for file, include in [
                ('fetch/A.cpp', '"platform/B.h"'),
                ('platform/A.cpp', '"notify/record/B.h"'),
                ('platform/data/A.cpp', '"platform/B.h"'),
                ('platform/files/A.cpp', '"platform/data/B.h"'),
                ('platform/linux/bus/A.cpp', '"platform/linux/events/B.h"'),
                ('platform/linux/screen/A.cpp', '"platform/linux/item/B.h"'),
                ('menu/A.cpp', '"notify/record/B.h"'),
                ('menu/A.cpp', '<shell/B.h>'),
                ('notify/record/A.cpp', '"notify/text/B.h"'),
                ('notify/rules/A.cpp', '"notify/popup/B.h"'),
                ('notify/text/A.cpp', '"notify/rules/B.h"'),
                ('notify/popup/A.cpp', '"notify/queue/B.h"'),
                ('notify/feed/A.cpp', '"notify/queue/B.h"'),
                ('notify/queue/A.cpp', '"notify/feed/B.h"'),
                ('shell/A.cpp', '"platform/linux/include/B.h"'),
                ('shell/A.cpp', '"tests/support/B.h"'),
                ('tools/kivservice/A.cpp', '"platform/linux/bus/B.h"')]:
            with self.subTest(file=file, include=include):
                result = check(file, include)
                self.assertIn(f'{file}:1: {include.strip(chr(34) + "<>")}', result.stdout)
                self.assertEqual(result.returncode, 1)

    def test_the_inside_of_the_linux_side_is_its_own(self):
        for file in ['menu/A.cpp', 'tests/session/A.cpp', 'bench/link/A.cpp']:
            with self.subTest(file=file):
                self.assertEqual(check(file, '"platform/linux/screen/B.h"').returncode, 1)

    def test_an_include_without_its_path_is_named(self):
        for include in ['"A.h"', '"menu/../shell/B.h"', '"../shell/B.h"', '<../shell/B.h>', '<SessionBus.h>']:
            with self.subTest(include=include):
                self.assertIn('is not written with its path',
                              check('menu/A.cpp', include, 'platform/linux/include/SessionBus.h').stdout)


if __name__ == '__main__':
    unittest.main()
