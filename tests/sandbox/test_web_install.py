import json
import subprocess
import unittest

from sandbox_case import SANDBOX, Engine
from web_case import Web, WebCase

STEPS = ["system", "app", "venv", "engine", "asr", "models", "service"]
HUB = ".cache/huggingface/hub"


class Installing(WebCase):
    def environment(self, **more: str) -> dict[str, str]:
        return super().environment() | {"no_proxy": "*"} | more

    def start_install(self, web: Web, home=None, ui: bool = True, pace: str = "0") -> subprocess.Popen:
        environment = self.environment(HOME=str(home or self.home), MURMELI_SANDBOX_PACE=pace,
                                       MURMELI_UI="1" if ui else "")
        child = subprocess.Popen(
            ["bash", "-c", 'set -o pipefail; curl -fsSL "$0/app/install.sh" | bash', web.origin], env=environment,
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        self.addCleanup(child.stdout.close)
        return child

    def install(self, web: Web, **how) -> tuple[int, list[str]]:
        child = self.start_install(web, **how)
        output, _ = child.communicate(timeout=15)
        return child.returncode, output.splitlines()

    def markers(self, lines: list[str], *kinds: str) -> list[str]:
        return [line[2:] for line in lines if line.startswith(tuple(f"@@{kind}|" for kind in kinds))]

    def test_the_whole_installation(self):
        web = self.web("--engine-arguments", "--processing-seconds 0 --no-telegram")
        status, lines = self.install(web)
        self.assertEqual(status, 0)
        self.assertEqual(self.markers(lines, "start", "done", "fail"),
                         [f"{kind}|{step}" for step in STEPS for kind in ("start", "done")])
        for step in ("venv", "asr", "models"):
            percents = [int(marker.split("|")[2]) for marker in self.markers(lines, "progress")
                        if marker.startswith(f"progress|{step}|")]
            self.assertEqual((percents, percents[-1]), (sorted(percents), 100))
        human = [line for line in lines if not line.startswith("@@")]
        self.assertTrue(any("\033[" in line for line in human) and any("\033[" not in line for line in human))

        self.assertTrue((self.home / HUB).is_dir())
        python = self.root / ".venv" / "bin" / "python"
        result = subprocess.run([python, self.root / "pipeline" / "native_rec.py", "--status"],
                                env=self.environment(), capture_output=True, text=True, timeout=8)
        self.assertEqual(json.loads(result.stdout), {"microphone": "notDetermined", "screen": False})
        for file in (self.root / "pipeline").iterdir():
            self.assertEqual(file.read_bytes(), (SANDBOX / file.name).read_bytes())
        self.assertIs(json.loads((self.root / "state.json").read_text())["telegram_connected"], False)

        # They run on what is installed beside them, and take their faults from this home.
        summary = self.folder / "summary.json"
        summary.write_text('{"title": "Смета"}')
        for script, arguments in (("protocol_pdf.py", [self.folder / "a.pdf", "--plain"]), ("reprotocol.py", [])):
            (self.root / ".sandbox-engine-faults.json").write_text('{"pdf": "fail", "reprotocol": "fail"}')
            result = subprocess.run([python, self.root / "pipeline" / script, summary, *arguments],
                                    env=self.environment(), capture_output=True, text=True, timeout=15)
            self.assertEqual((result.returncode, result.stderr), (1, "sandbox: this failure was asked for\n"))

        self.assertEqual(web.end(), 0)
        log = web.output.read_text()
        self.assertEqual((log.count("sandbox: ready in"), log.count("sandbox: finished\n")), (1, 2))
        # The engine is gone: another one may have the home.
        Engine(self)

    def test_it_goes_on_where_it_failed(self):
        web = self.web("--fail-install", "engine")
        status, lines = self.install(web)
        self.assertEqual((status, lines[-1]), (1, "@@fail|engine"))
        self.assertEqual(self.markers(lines, "done"), [f"done|{step}" for step in STEPS[:3]])
        self.assertFalse(lines[-2].startswith("@@"))
        self.assertEqual(self.install(web)[0], 1)

        web.control("install", fail_at=None)
        web.control("faults", path="/app/engine/scene.py", fault="cut")
        status, lines = self.install(web)
        self.assertEqual((status, lines[-1]), (1, "@@fail|engine"))
        self.assertFalse((self.root / "pipeline" / "scene.py").exists())

        web.control("faults")
        status, lines = self.install(web)
        self.assertEqual((status, self.markers(lines, "done")), (0, [f"done|{step}" for step in STEPS]))
        worked = {marker.split("|")[1] for marker in self.markers(lines, "progress")}
        self.assertEqual(worked, {"asr", "models"})
        self.assertIs(web.shown("service")["running"], True)

        web.end()
        self.assertEqual(web.output.read_text().count("sandbox: ready in"), 1)

    def test_the_models_are_there_only_when_they_are_complete(self):
        web = self.web()
        self.assertEqual(self.install(web)[0], 0)
        (self.home / HUB).rmdir()
        child = self.start_install(web, pace="1")
        there = {line.rstrip("\n"): (self.home / HUB).exists() for line in child.stdout}
        self.assertEqual(child.wait(), 0)
        self.assertEqual((there["@@progress|models|20"], there["@@done|models"]), (False, True))
        self.assertEqual({line.split("|")[1] for line in there if line.startswith("@@progress")}, {"models"})

    def test_plain_text_when_nobody_reads_markers(self):
        web = self.web()
        for fail_at, status in ((None, 0), ("models", 1)):
            web.control("install", fail_at=fail_at)
            code, lines = self.install(web, ui=False)
            self.assertEqual(code, status)
            self.assertFalse([line for line in lines if "@@" in line or "\033" in line])
            self.assertTrue(lines[-1])

    def test_another_home_is_refused(self):
        web = self.web()
        status, lines = self.install(web, home=self.real_home)
        self.assertEqual((status, len(lines)), (1, 1))
        self.assertIn(str(self.real_home), lines[0])
        self.assertEqual(list(self.real_home.iterdir()), [])
        link = self.folder / "link"
        link.symlink_to(self.home)
        self.assertEqual(self.install(web, home=link)[0], 0)

    def test_an_engine_that_runs_already_is_left_alone(self):
        web = self.web()
        engine = Engine(self)
        self.assertEqual(self.install(web)[0], 0)
        self.assertIs(web.shown("service")["running"], False)
        engine.end()
        web.control("service/start")
        self.assertIs(web.shown("service")["running"], True)

    def test_an_engine_that_cannot_start_is_a_failure(self):
        web = self.web("--engine-arguments=--sing")
        status, lines = self.install(web)
        self.assertEqual((status, lines[-1]), (1, "@@fail|service"))

    def test_the_updater_notes_each_run(self):
        web = self.web()
        script = self.folder / "update.sh"
        script.write_bytes(web.get("/app/update.sh").body)
        for home, status, runs in ((self.home, 0, 1), (self.home, 0, 2), (self.real_home, 1, 2)):
            result = subprocess.run(["bash", script], env=self.environment(HOME=str(home), MURMELI_SANDBOX_PACE="0"),
                                    capture_output=True, text=True, timeout=8)
            self.assertEqual(result.returncode, status, result.stderr)
            self.assertEqual(len((self.root / ".sandbox-updates.log").read_text().splitlines()), runs)
        self.assertEqual(list(self.real_home.iterdir()), [])


if __name__ == "__main__":
    unittest.main()
