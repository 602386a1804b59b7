"""The same sources give the same packages. The short form packs the same builds again, as another user would
be set up; the long form builds two copies of the sources, in different folders."""
import os
import shutil
import time
import unittest
from unittest import mock

from support import DIST, LINUX_BUILD, LONG, MSI, ROOT, WINDOWS_BUILD, is_signed, require, source_date, temporary_folder

# What must not show in the packages. Times of files are counted in units of up to two seconds.
OTHER_SETTINGS = {"TZ": "Asia/Tokyo", "LC_ALL": "C", "LANG": "C", "HOME": "/nonexistent", "USER": "somebody",
                  "CCACHE_DISABLE": "1"}


def checksums(folder):
    return (folder / "SHA256SUMS").read_text()


def environment(**settings):
    """Nothing is signed: each signature with a time stamp is another one."""
    return {name: value for name, value in os.environ.items()
            if name != "SOURCE_DATE_EPOCH" and not name.startswith("SARVEX_SIGN_")} | settings


class ReproducibleTest(unittest.TestCase):
    @unittest.skipIf(LONG, "the long form builds everything again")
    @unittest.skipIf(is_signed(MSI), "the packages are signed; those made again are not")
    # Whoever tests signed packages may still have this in the environment.
    @mock.patch.dict(os.environ, {"SARVEX_SIGN_CERTIFICATE": "/nonexistent"})
    def test_packing_again_gives_the_same_bytes(self):
        time.sleep(2.1)
        out = temporary_folder(self) / "again"
        require("sh", "-c", 'umask 077; exec "$@"', "sh", ROOT / "scripts/package", "--out", out, LINUX_BUILD,
                WINDOWS_BUILD, env=environment(**OTHER_SETTINGS, SOURCE_DATE_EPOCH=str(source_date())))
        self.assertEqual(checksums(DIST), checksums(out))

    @unittest.skipUnless(LONG, "building everything twice takes minutes")
    def test_two_builds_in_different_folders_at_different_times_give_the_same_bytes(self):
        folder = temporary_folder(self)
        found = []
        for name, settings in [("a", {}), ("a much longer name, with blanks", OTHER_SETTINGS)]:
            sources = folder / name
            require("git", "clone", "--quiet", ROOT, sources)
            require("sh", "-c", f'umask {"077" if settings else "022"}; exec "$@"', "sh", sources / "scripts/package",
                    cwd=sources, timeout=3600, env=environment(**settings))
            found.append(checksums(sources / "dist"))
            shutil.rmtree(sources)
        self.assertEqual(*found)


if __name__ == "__main__":
    unittest.main()
