"""What the application for macOS is put together from.

    macos_bundle_test.py CMAKE PACKAGING_FOLDER INFO_PLIST VERSION BUILD_NUMBER
"""

import pathlib
import plistlib
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest


def picture(width, height=None):
    """The beginning of a PNG file."""
    return b"\x89PNG\r\n\x1a\n" + struct.pack(">I4sII", 13, b"IHDR", width, height or width)


class Descriptions(unittest.TestCase):
    def test_the_information_dictionary(self):
        with open(INFO, "rb") as file:
            info = plistlib.load(file, fmt=plistlib.FMT_XML)
        expected = {
            "CFBundleIdentifier": "com.rowanhesket.tallowcrest.pro",
            "CFBundleExecutable": "tallowcrest-desktop",
            "CFBundleIconFile": "tallowcrest.icns",
            "CFBundlePackageType": "APPL",
            "CFBundleShortVersionString": VERSION,
            "CFBundleVersion": BUILD,
            "LSMinimumSystemVersion": "14.0",
            "NSHighResolutionCapable": True,
        }
        self.assertEqual({key: info.get(key) for key in expected}, expected)
        self.assertIsInstance(info["TallowcrestUpdateFeedURL"], str)
        # Without its reason the system refuses the script that asks an application to quit.
        self.assertTrue(info["NSAppleEventsUsageDescription"])

    def test_a_feed_with_characters_that_XML_has_for_itself(self):
        feed = "https://example.org/feed?a=1&b=<2>&amp;"
        with tempfile.TemporaryDirectory() as name:
            shutil.copy(PACKAGING / "Info.plist.in", name)
            subprocess.run([CMAKE, f"-DTALLOWCREST_UPDATE_FEED_URL={feed}", "-P",
                            PACKAGING / "CMakeLists.txt"], cwd=name, check=True)
            with open(pathlib.Path(name, "Info.plist"), "rb") as file:
                info = plistlib.load(file, fmt=plistlib.FMT_XML)
        self.assertEqual(info["TallowcrestUpdateFeedURL"], feed)

    def test_the_hardened_runtime_has_the_one_exception_that_is_needed(self):
        with open(PACKAGING / "entitlements.plist", "rb") as file:
            self.assertEqual(plistlib.load(file, fmt=plistlib.FMT_XML),
                             {"com.apple.security.automation.apple-events": True})


class Icon(unittest.TestCase):
    def make(self, *pictures):
        with tempfile.TemporaryDirectory() as name:
            folder = pathlib.Path(name)
            for index, content in enumerate(pictures):
                (folder / str(index)).write_bytes(content)
            result = subprocess.run(
                [PACKAGING / "icns", folder / "icon", *map(str, map(folder.joinpath, map(
                    str, range(len(pictures)))))],
                stderr=subprocess.PIPE, text=True, check=False)
            return result, (folder / "icon").read_bytes() if result.returncode == 0 else b""

    def test_has_each_picture_under_its_kinds(self):
        small, large = picture(32) + b"small", picture(1024) + b"large one"
        _, icon = self.make(small, large)
        self.assertEqual(struct.unpack(">4sI", icon[:8]), (b"icns", len(icon)))
        entries, at = [], 8
        while at < len(icon):
            kind, size = struct.unpack_from(">4sI", icon, at)
            entries.append((kind, icon[at + 8:at + size]))
            at += size
        self.assertEqual(entries, [(b"icp5", small), (b"ic11", small), (b"ic10", large)])

    def test_refuses_what_it_has_no_kind_for(self):
        for content, words in ((picture(100), "has 100 x 100 pixels"),
                               (picture(32, 64), "has 32 x 64 pixels"),
                               (b"GIF89a", "is not a PNG file")):
            result, _ = self.make(content)
            self.assertEqual(result.returncode, 1)
            self.assertIn(words, result.stderr)


if __name__ == "__main__":
    BUILD, VERSION, INFO, PACKAGING, CMAKE = (sys.argv.pop(), sys.argv.pop(), sys.argv.pop(),
                                              pathlib.Path(sys.argv.pop()), sys.argv.pop())
    unittest.main()
