"""What an installation and the package hold: made from a finished build, looked at with the tools
that know the desktop's conventions."""
import os
import pathlib
import re
import shutil
import subprocess
import tempfile
import unittest

BUILD, CMAKE = pathlib.Path(os.environ["KESTRIN_BUILD"]), os.environ["CMAKE"]
TYPE = "application/x-vnd.ZR-KestrinEventSet"
# What is looked at: a pattern below the prefix, how many files it fits, and the tool.
VALID = [("share/applications/*.desktop", 1, ["desktop-file-validate"]),
         ("share/metainfo/*.xml", 1, ["appstreamcli", "validate", "--no-net"]),
         ("share/metainfo/*.xml", 1, ["xmllint", "--noout"]),
         ("share/mime/packages/*.xml", 1, ["xmllint", "--noout"]),
         ("share/icons/hicolor/scalable/*/*.svg", 2, ["xmllint", "--noout"]),
         ("share/man/man1/*.1.gz", 3, ["man", "--warnings", "-E", "UTF-8", "-l", "-Tutf8", "-Z"]),
         ("share/bash-completion/completions/kestrinctl", 1, ["bash", "-n"]),
         ("share/zsh/*/_kestrinctl", 1, ["zsh", "-n"]),
         ("share/fish/vendor_completions.d/kestrinctl.fish", 1, ["fish", "-n"])]
ICONS = {"apps": "vnd.ZR.Kestrin", "mimetypes": TYPE.replace("/", "-")}


def run(*command, **options):
    done = subprocess.run([str(word) for word in command], capture_output=True, text=True, check=False, **options)
    return done.returncode, done.stdout + done.stderr


def files_below(folder):
    return {str(path) for path in folder.rglob("*") if path.is_symlink() or path.is_file()}


class Installed(unittest.TestCase):
    def setUp(self):
        self.root = pathlib.Path(tempfile.mkdtemp(prefix="kestrin install "))
        self.addCleanup(shutil.rmtree, self.root)
        self.home = self.root / "home"
        self.environment = {"PATH": os.environ["PATH"], "HOME": str(self.home), "LC_ALL": "C.UTF-8"}

    def install(self, prefix, **environment):
        """The files of the manifest."""
        status, said = run(CMAKE, "--install", BUILD, "--prefix", prefix, env=self.environment | environment)
        self.assertEqual(status, 0, said)
        return set((BUILD / "install_manifest.txt").read_text().splitlines())

    def uninstall(self, **environment):
        status, said = run(CMAKE, "-P", pathlib.Path(__file__).parents[2] / "cmake/Uninstall.cmake", cwd=BUILD,
                           env=self.environment | environment)
        self.assertEqual(status, 0, said)

    def commands(self, root, files):
        """Whether the programs that installed files start can be started, as they lie below the root."""
        for file in files:
            if re.search(r"\.(desktop|service)$", file):
                for line in re.findall(r"^\w*Exec(?:Start)?=.*", (root / file[1:]).read_text(), re.MULTILINE):
                    found = re.match(r'(?:TryExec=(.+)|Exec(?:Start)?=(?:"([^"]+)"|(\S+)))', line)
                    if "gapplication" not in line:
                        yield os.access(root / found[found.lastindex][1:], os.X_OK), (file, line)

    def test_in_a_home_folder(self):
        """No root, a blank in the path, nothing outside the home folder, and nothing left afterwards."""
        prefix = self.home / ".local"
        manifest = self.install(prefix)
        caches = {path for path in files_below(self.home) if "/share/mime/" in path and "/packages/" not in path
                  or path.endswith("mimeinfo.cache")}
        self.assertEqual(files_below(self.home) - caches, manifest)
        self.assertIn(str(self.home / ".config/autostart/vnd.ZR.Kestrin.Background.desktop"), manifest)
        self.assertIn(str(prefix / "share/systemd/user/kestrin-background.service"), manifest)
        service = (prefix / "share/dbus-1/services/vnd.ZR.KestrinBackground.service").read_text()
        self.assertIn("SystemdService=kestrin-background.service", service)
        for starts, line in self.commands(pathlib.Path("/"), manifest):
            self.assertTrue(starts, line)
        for pattern, count, tool in VALID:
            with self.subTest(" ".join(tool) + " " + pattern):
                found = sorted(prefix.glob(pattern))
                self.assertEqual(len(found), count)
                for path in found:
                    status, said = run(*tool, path, env=self.environment | {"MANROFFSEQ": "", "MANWIDTH": "80"})
                    self.assertEqual((status, re.findall(".*(?:error|warning):.*", said)), (0, []), said)
        status, said = run("desktop-file-validate", *self.home.glob(".config/autostart/*"))
        self.assertEqual((status, said), (0, ""))
        for kind, name in ICONS.items():
            for size in (16, 22, 24, 32, 48, 64, 128, 256):
                picture = (prefix / f"share/icons/hicolor/{size}x{size}/{kind}/{name}.png").read_bytes()
                self.assertEqual((picture[:4], int.from_bytes(picture[16:20], "big")), (b"\x89PNG", size))
        self.check_type(prefix)
        self.check_commands_are_told(prefix)
        self.uninstall()
        self.assertFalse(manifest & files_below(self.home))
        self.assertFalse((prefix / "lib/kestrin").exists() or (prefix / "include/kestrin").exists())

    def check_type(self, prefix):
        """A set is known by its name, and without one by its bytes; its application is Kestrin."""
        golden = pathlib.Path(__file__).parents[1] / "data/sets/golden"
        for source, name in (("tea.kestrin", "a.kestrin"), ("full-1.0-big.kestrin", "big"),
                             ("full-1.1-little.kestrin", "little")):
            shutil.copy(golden / source, self.root / name)
            told = run("gio", "info", "-a", "standard::content-type", self.root / name, env=self.environment)[1]
            self.assertIn(f"standard::content-type: {TYPE}\n", told, name)
        self.assertIn("vnd.ZR.Kestrin.desktop", run("gio", "mime", TYPE, env=self.environment)[1])

    def check_commands_are_told(self, prefix):
        """The manual page and the completion know every command and option of kestrinctl's help."""
        program = prefix / "bin/kestrinctl"
        usage = re.findall(r"kestrinctl ([a-z]+)(.*)", run(program, "--help")[1])
        page = run("man", "-l", prefix / "share/man/man1/kestrinctl.1.gz",
                   env=self.environment | {"MANWIDTH": "200"})[1]
        script = (f"source '{prefix}/share/bash-completion/completions/kestrinctl'\n"
                  'complete_words() { COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _kestrinctl; echo "${COMPREPLY[@]}"; }\n')
        offered = run("bash", "-c", script + f"complete_words '{program}' ''")[1].split()
        for command, rest in usage:
            options = re.findall(r"--[a-z]+", rest)
            heading = re.search(rf"^ +{command}\b.*", page, re.MULTILINE)
            self.assertTrue(heading and command in offered, command)
            self.assertEqual(re.findall(r"--[a-z]+", heading[0]), options, command)
            self.assertEqual(run("bash", "-c", script + f"complete_words '{program}' {command} --")[1].split(), options)

    def test_staged_for_all_users(self):
        """DESTDIR goes before everything, and no path in a file knows of it or of the build."""
        for prefix, asks_systemd in (("/usr", True), ("/usr/local", True), ("/opt/kestrin", False)):
            stage = self.root / ("stage" + prefix.replace("/", "-"))
            manifest = self.install(prefix, DESTDIR=str(stage))
            self.assertEqual({str(stage) + file for file in manifest}, files_below(stage))
            self.assertIn("/etc/xdg/autostart/vnd.ZR.Kestrin.Background.desktop", manifest)
            for starts, line in self.commands(stage, manifest):
                self.assertTrue(starts, line)
            for file in manifest:
                if not re.search(r"/bin/|\.(png|gz|so)$|/lib/kestrin/[Kk]estrin", file):
                    text = (stage / file[1:]).read_text()
                    self.assertFalse(str(self.root) in text or str(BUILD) in text, file)
            service = stage / prefix[1:] / "share/dbus-1/services/vnd.ZR.KestrinBackground.service"
            self.assertEqual("SystemdService=" in service.read_text(), asks_systemd)
            self.uninstall(DESTDIR=str(stage))
            self.assertEqual(files_below(stage), set())

    def test_package(self):
        """Lintian finds nothing, and packing twice gives the same bytes."""
        packages = []
        for name in ("one", "two"):
            status, said = run("cpack", "-G", "DEB", "-B", self.root / name, cwd=BUILD)
            self.assertEqual(status, 0, said)
            packages += (self.root / name).glob("*.deb")
        self.assertEqual(packages[0].read_bytes(), packages[1].read_bytes())
        status, said = run("lintian", "--fail-on", "error,warning", "--tag-display-limit", "0", packages[0])
        self.assertEqual((status, re.findall("^[EW]:.*", said, re.MULTILINE)), (0, []), said)


if __name__ == "__main__":
    unittest.main()
