"""The installer for Windows, with wine's msiexec: installed, run, upgraded and uninstalled."""
import os
import re
import shutil
import struct
import unittest

from support import MSI, ROOT, VERSION, WINE, ZIP, require, simulator, temporary_folder, unpack
from wine_prefix import WinePrefix

MAKE_MSI = ROOT / "packaging/windows/make-msi"
OLDER = "0.9.8"
FOLDER = "Program Files/SarvexTool"
WINDOWS_KEY = r"HKLM\Software\Microsoft\Windows NT\CurrentVersion"
ENVIRONMENT_KEY = r"HKLM\System\CurrentControlSet\Control\Session Manager\Environment"
OWN_KEY = r"HKLM\Software\SarvexTool"
UNINSTALL_KEY = r"HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall"
# What msiexec ends with.
SUCCESS = 0
# 1603, of which wine hands on the lowest eight bits.
INSTALL_FAILURE = 1603 % 256
PAGE = (ROOT / "docs/install.md").read_text()
README = (ROOT / "README.md").read_text()
[REPAIR] = re.findall(r"^start /wait msiexec .* (REINSTALL=.*) /qn /norestart$", PAGE, re.MULTILINE)
REFUSAL = "A newer version of SarvexTool is installed. Uninstall it before you install this one."


def set_version(path, version):
    """Gives a program another version, in the numbers of its resources."""
    major, minor, patch = map(int, version.split("."))
    data = bytearray(path.read_bytes())
    fixed = data.index(struct.pack("<II", 0xFEEF04BD, 0x10000))
    struct.pack_into("<II", data, fixed + 8, major << 16 | minor, patch << 16)
    path.write_bytes(data)


def table(msi, name):
    """The rows of a table, each as a dictionary."""
    lines = require("msiinfo", "export", msi, name).decode().replace("\r", "").split("\n")
    columns = lines[0].split("\t")
    return [dict(zip(columns, line.split("\t"))) for line in lines[3:] if line]


def contents(folder):
    """The bytes of each file in a folder, by its path."""
    return {path.relative_to(folder).as_posix(): path.read_bytes()
            for path in folder.rglob("*") if path.is_file()}


class MsiTest(unittest.TestCase):
    """What the tests below share: the installer, one of an older version, and a Windows."""

    @classmethod
    def setUpClass(cls):
        cls.work = temporary_folder(cls)
        top = unpack(ZIP, cls.work)
        shutil.rmtree(top / "sdk", ignore_errors=True)
        (top / "completion/sarvextool.bash").unlink()
        cls.packed = contents(top)
        cls.older_msi = cls.work / "older.msi"
        cls.older_packed = cls.make_older(top)
        cls.wine = WinePrefix(cls)
        cls.set_windows_version(10)
        cls.registry_before = cls.wine.registry()
        cls.files_before = cls.wine.files()
        cls.path_before = cls.path_entries()

    @classmethod
    def make_older(cls, top):
        """An installer of an older version: older programs and pages, one page fewer, another one more."""
        older = cls.work / "older"
        shutil.copytree(top, older)
        for program in older.rglob("*.exe"):
            set_version(program, OLDER)
        (older / "README.md").write_text("What there was to say.")
        (older / "docs/protocol.md").unlink()
        (older / "docs/obsolete.md").write_text("No newer version has this page.")
        (older / "obsolete").mkdir()
        (older / "obsolete/page.md").write_text("Nor this folder.")
        require(MAKE_MSI, older, cls.older_msi)
        return contents(older)

    @classmethod
    def set_windows_version(cls, major):
        """Wine of itself may be a Windows of any version."""
        value = [WINDOWS_KEY, "/v", "CurrentMajorVersionNumber", "/f"]
        if major is None:
            cls.wine.run("reg", "delete", *value)
        else:
            require(*WINE, "reg", "add", *value, "/t", "REG_DWORD", "/d", str(major), env=cls.wine.environment)

    @classmethod
    def msiexec(cls, *arguments):
        return cls.wine.run("msiexec", *arguments, "/qn").returncode

    @classmethod
    def install(cls, msi, *properties, code=SUCCESS):
        found = cls.msiexec("/i", f"Z:{msi}", *properties)
        if found != code:
            raise AssertionError(f"msiexec ended with {found} in the place of {code}")

    @classmethod
    def installed_versions(cls):
        """Product code and version of all that the system's list of programs shows of ours."""
        listing = cls.wine.run("reg", "query", UNINSTALL_KEY, "/s").stdout.decode()
        return {code: re.search(r"DisplayVersion +REG_SZ +(\S+)", entry)[1]
                for code, entry in re.findall(r"\\Uninstall\\(\{[-0-9A-F]+\})\r?\n(.*?)(?=\nHKEY|\Z)", listing,
                                              re.DOTALL)
                if re.search(r"DisplayName +REG_SZ +SarvexTool\r?\n", entry)}

    @classmethod
    def uninstall_all(cls):
        for code in cls.installed_versions():
            cls.msiexec("/x", code)
        for folder in (FOLDER, "Tools"):
            shutil.rmtree(cls.wine.drive / folder, ignore_errors=True)

    @classmethod
    def path_entries(cls):
        return [entry for entry in cls.wine.registry_value(ENVIRONMENT_KEY, "PATH").split(";") if entry]

    @classmethod
    def own_path_entries(cls):
        return [entry for entry in cls.path_entries() if "sarvex" in entry.lower()]

    @classmethod
    def shortcuts(cls):
        return {path.stem: path.read_bytes() for path in cls.wine.drive.rglob("*.lnk")
                if path.parent.name == "SarvexTool" and path.parent.parent.name == "Programs"}


class InstalledTest(MsiTest):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.install(MSI)

    def test_all_is_there_but_what_is_for_programmers_and_for_linux(self):
        self.assertEqual(self.packed, contents(self.wine.drive / FOLDER))

    def test_the_system_lists_it(self):
        (code, version), = self.installed_versions().items()
        self.assertEqual(VERSION, version)
        for name, text in [("InstallLocation", "C:\\Program Files\\SarvexTool\\"),
                           ("Contact", "SarvexTool maintainers"),
                           ("Comments", "Client for the SarvexTool daemon, and what is around a power test")]:
            with self.subTest(name=name):
                self.assertEqual(text, self.wine.registry_value(f"{UNINSTALL_KEY}\\{code}", name))

    def test_the_registry_tells_what_the_page_says(self):
        code, = self.installed_versions()
        found = {"Version": VERSION, "ProductCode": code, "InstallDir": "C:\\Program Files\\SarvexTool\\"}
        for name, text in found.items():
            with self.subTest(name=name):
                self.assertEqual(text, self.wine.registry_value(OWN_KEY, name))
        told = re.findall(r"^\| `(\w+)` in `HKLM\\Software\\SarvexTool` \|", PAGE, re.MULTILINE)
        self.assertEqual(sorted(found), sorted(told))

    def test_the_programs_are_found_by_their_names_but_the_simulated_daemon_is_not(self):
        done = self.wine.run("cmd", "/c", "SarvexToolBench", "--version")
        self.assertEqual((0, f"SarvexToolBench {VERSION}\n".encode()), (done.returncode, done.stdout))
        self.assertNotEqual(0, self.wine.run("cmd", "/c", "vemo", "--version").returncode)

    def test_the_programs_run(self):
        folder = self.wine.drive / FOLDER
        port_file = folder / "Socket.cfg"
        self.addCleanup(port_file.write_bytes, port_file.read_bytes())
        with simulator("env", *self.wine.settings(), *WINE, folder / "simulator/vemo.exe") as (process, port):
            port_file.write_text(port)
            done = self.wine.run("cmd", "/c", "SarvexToolClient", "-wifi-band", "5", "-wifi-channel", "36")
            self.assertEqual((0, b"Band: 5\r\nChannel: 36\r\n", b""), (done.returncode, done.stdout, done.stderr))
            self.assertEqual(0, self.wine.run("cmd", "/c", "SarvexToolClient", "-exit").returncode)
            self.assertEqual(0, process.wait(60))

    def test_the_lines_of_the_readme_start_the_simulated_daemon_and_copy_the_examples(self):
        start, copy = re.findall(r'^.*`((?:xcopy /i )?"%ProgramFiles%[^`]*)`', README, re.MULTILINE)
        folder = temporary_folder(self)
        script = folder / "lines.bat"
        script.write_text(f"@{start} --version\r\n@{copy} >nul\r\n")
        done = self.wine.run("cmd", "/c", script.name, cwd=folder)
        self.assertEqual((0, f"vemo {VERSION}\r\n".encode()), (done.returncode, done.stdout))
        self.assertEqual({name.removeprefix("examples/"): content for name, content in self.packed.items()
                          if name.startswith("examples/")}, contents(folder / "examples"))

    def test_the_path_has_the_folder_of_the_programs_alone_at_its_end(self):
        self.assertEqual([*self.path_before, "C:\\Program Files\\SarvexTool\\"], self.path_entries())

    def test_the_start_menu_has_a_command_prompt_and_the_readme(self):
        shortcuts = self.shortcuts()
        self.assertEqual(["SarvexTool Command Prompt", "SarvexTool Documentation"], sorted(shortcuts))
        for name, words in [
                ("SarvexTool Command Prompt",
                 r'/K "set "PATH=C:\Program Files\SarvexTool\;%PATH%" & cd /d "%USERPROFILE%""'),
                ("SarvexTool Documentation", r'"C:\Program Files\SarvexTool\README.md"')]:
            with self.subTest(name=name):
                self.assertIn(words.encode("utf-16-le"), shortcuts[name])

    def test_an_older_version_is_refused_with_words(self):
        self.install(self.older_msi, code=INSTALL_FAILURE)
        self.assertEqual(self.packed, contents(self.wine.drive / FOLDER))
        self.assertEqual([VERSION], list(self.installed_versions().values()))
        self.assertIn({"Condition": "Installed OR NOT WIX_DOWNGRADE_DETECTED", "Description": REFUSAL},
                      table(MSI, "LaunchCondition"))


class ChangesTest(MsiTest):
    def setUp(self):
        self.addCleanup(self.uninstall_all)

    def test_uninstalling_leaves_nothing(self):
        self.install(MSI)
        self.assertNotEqual(self.files_before, self.wine.files())
        code, = self.installed_versions()
        self.assertEqual(SUCCESS, self.msiexec("/x", code))
        self.assertEqual(self.path_before, self.path_entries())
        # The system keeps its folder of installers once it has made it.
        self.assertLessEqual(self.wine.files() - self.files_before, {"windows/Installer"})
        left = {line for line in self.wine.registry() - self.registry_before
                if re.search(r"sarvex|" + re.escape(code[1:9]) + "|" + code[8:0:-1], line, re.IGNORECASE)}
        self.assertEqual(set(), left)

    def test_a_windows_before_10_is_refused_with_words_but_can_uninstall(self):
        self.addCleanup(self.set_windows_version, 10)
        self.set_windows_version(None)
        self.install(MSI, code=INSTALL_FAILURE)
        self.assertFalse((self.wine.drive / FOLDER).exists())
        self.assertIn("SarvexTool needs Windows 10 or later.",
                      {row["Description"] for row in table(MSI, "LaunchCondition")})
        self.set_windows_version(11)
        self.install(MSI)
        self.set_windows_version(None)
        self.assertEqual(SUCCESS, self.msiexec("/x", *self.installed_versions()))
        self.assertFalse((self.wine.drive / FOLDER).exists())

    def test_the_lines_of_the_page_install_and_uninstall(self):
        section = PAGE.split("## Windows: the installer\n")[1].split("\n## ")[0]
        lines = {kind: [line for text in re.findall(rf"^```{kind}\n(.*?)^```$", section, re.DOTALL | re.MULTILINE)
                        for line in text.splitlines() if "msiexec" in line] for kind in ("bat", "powershell")}
        arguments = [line.removeprefix("start /wait msiexec ") for line in lines["bat"]]
        self.assertEqual(["/i", "/i", "/x", "/x"], [text[:2] for text in arguments])
        for line, text in zip(lines["powershell"], arguments, strict=True):
            self.assertRegex(line, r"^(\$done = )?Start-Process msiexec -Wait (-PassThru )?-ArgumentList "
                                   rf"'{re.escape(text)}'$")
        install, repair, uninstall, uninstall_by_code = lines["bat"]
        for line, versions in [(install, [VERSION]), (repair, [VERSION]), (uninstall, []), (install, [VERSION]),
                               (uninstall_by_code, [])]:
            code = "".join(self.installed_versions())
            self.run_in_command_prompt(line.replace("VERSION-", f"{VERSION}-").replace("{PRODUCT-CODE}", code))
            self.assertEqual(versions, list(self.installed_versions().values()), line)
        self.assertTrue((self.work / "install.log").exists())

    def run_in_command_prompt(self, line):
        """In a folder with the installer, in which something may be written."""
        shutil.copy(MSI, self.work)
        (self.work / "page.bat").write_text(f"{line}\n@exit %ERRORLEVEL%\n")
        done = self.wine.run("cmd", "/c", "page.bat", cwd=self.work)
        self.assertEqual(SUCCESS, done.returncode, done.stdout)

    def test_an_upgrade_keeps_what_users_edited_and_replaces_the_rest(self):
        self.install(self.older_msi)
        folder = self.wine.drive / FOLDER
        self.assertEqual(self.older_packed, contents(folder))
        own = {"Socket.cfg": b"9123", "simulator/Socket.cfg": b"9124", "SarvexToolCmds.txt": b"-wifi-stop\r\n",
               "docs/notes of our own.txt": b"mine"}
        for name, content in own.items():
            (folder / name).write_bytes(content)
            # As if copied from a bench that was set up long ago.
            os.utime(folder / name, (1e9, 1e9))
        self.install(MSI)
        self.assertEqual({**self.packed, **own}, contents(folder))
        self.assertFalse((folder / "obsolete").exists())
        self.assertEqual([VERSION], list(self.installed_versions().values()))
        self.assertEqual(VERSION, self.wine.registry_value(OWN_KEY, "Version"))
        self.assertEqual(["C:\\Program Files\\SarvexTool\\"], self.own_path_entries())
        self.assertEqual(2, len(self.shortcuts()))
        self.msiexec("/x", self.wine.registry_value(OWN_KEY, "ProductCode"))
        self.assertEqual({name: own[name] for name in ("SarvexToolCmds.txt", "docs/notes of our own.txt")},
                         contents(folder))

    def test_a_repair_restores_the_files_but_not_what_users_edited(self):
        self.install(MSI)
        folder = self.wine.drive / FOLDER
        (folder / "SarvexToolClient.exe").write_bytes(b"no program")
        (folder / "docs/protocol.md").unlink()
        (folder / "Socket.cfg").write_bytes(b"9123")
        self.install(MSI, *REPAIR.split(" "))
        self.assertEqual({**self.packed, "Socket.cfg": b"9123"}, contents(folder))

    def test_an_upgrade_goes_to_the_folder_of_the_older_version(self):
        self.install(self.older_msi, r"INSTALLDIR=C:\Tools\Sarvex Tool")
        folder = self.wine.drive / "Tools/Sarvex Tool"
        (folder / "Socket.cfg").write_bytes(b"9123")
        self.install(MSI)
        self.assertEqual({**self.packed, "Socket.cfg": b"9123"}, contents(folder))
        self.assertFalse((self.wine.drive / FOLDER).exists())
        self.assertEqual(["C:\\Tools\\Sarvex Tool\\"], self.own_path_entries())

    def test_parts_can_be_left_out(self):
        self.install(MSI, "ADDLOCAL=Programs")
        self.assertEqual({name: content for name, content in self.packed.items()
                          if not name.startswith("simulator/")}, contents(self.wine.drive / FOLDER))
        self.assertEqual({}, self.shortcuts())
        self.assertEqual([], self.own_path_entries())


class TablesTest(unittest.TestCase):
    def test_the_page_tells_the_upgrade_code(self):
        code, = (row["Value"] for row in table(MSI, "Property") if row["Property"] == "UpgradeCode")
        self.assertIn(f"`{code}`", PAGE)

    def test_no_program_is_ended_and_no_computer_restarted(self):
        # Under wine neither would happen anyway.
        properties = {row["Property"]: row["Value"] for row in table(MSI, "Property")}
        self.assertEqual(("ReallySuppress", "DisableShutdown"),
                         (properties.get("REBOOT"), properties.get("MSIRESTARTMANAGERCONTROL")))

    def test_programs_have_their_versions_and_other_files_their_hashes(self):
        # A program without its version would never be replaced by an upgrade.
        hashed = {row["File_"] for row in table(MSI, "MsiFileHash")}
        for row in table(MSI, "File"):
            name = row["FileName"].rpartition("|")[2]
            with self.subTest(name=name):
                program = name.endswith(".exe")
                self.assertEqual((f"{VERSION}.0", "1033") if program else ("", ""),
                                 (row["Version"], row["Language"]))
                self.assertEqual(not program, row["File"] in hashed)
                short = row["FileName"].partition("|")[0]
                self.assertRegex(short, r"^[^. ]{1,8}(\.[^. ]{1,3})?$")

    def test_windows_keeps_the_choice_of_parts_at_an_upgrade(self):
        migrate_features, only_detect = 1, 2
        rows = {row["ActionProperty"]: int(row["Attributes"]) for row in table(MSI, "Upgrade")}
        self.assertEqual({"WIX_UPGRADE_DETECTED": migrate_features, "WIX_DOWNGRADE_DETECTED": only_detect}, rows)
        self.assertIn("MigrateFeatureStates", {row["Action"] for row in table(MSI, "InstallExecuteSequence")})

    def test_configuration_is_never_overwritten(self):
        never_overwrite, is_64_bit = 128, 256
        names = {row["Component_"]: row["FileName"] for row in table(MSI, "File")}
        for row in table(MSI, "Component"):
            with self.subTest(component=row["Component"]):
                attributes = int(row["Attributes"])
                self.assertTrue(attributes & is_64_bit)
                self.assertEqual(names.get(row["Component"]) == "Socket.cfg", bool(attributes & never_overwrite))

    def test_two_installers_of_the_same_files_are_identical(self):
        environment = {**os.environ, "SOURCE_DATE_EPOCH": "1700000000"}
        work = temporary_folder(self)
        made = []
        for name, moment in [("first", 1.5e9), ("second/in another folder", 1.6e9)]:
            top = unpack(ZIP, work / name)
            for path in top.rglob("*"):
                os.utime(path, (moment, moment))
            msi = work / name / "made.msi"
            require(MAKE_MSI, top, msi, env=environment)
            made.append(msi.read_bytes())
        self.assertEqual(made[0], made[1])


if __name__ == "__main__":
    unittest.main()
