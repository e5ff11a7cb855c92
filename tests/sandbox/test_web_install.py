import json
import subprocess

from sandbox_case import Engine, SandboxCase, Web

STEPS = ["system", "app", "venv", "engine", "asr", "models", "service"]
FETCHED = 'set -o pipefail; curl -fsSL --noproxy "*" "$0" | bash'


def steps(lines: list[str], kind: str) -> list[str]:
    return [line.split("|")[1] for line in lines if line.startswith(f"@@{kind}|")]


class Installing(SandboxCase):
    def fetch(self, web: Web, script: str = "install.sh", home=None) -> tuple[int, list[str]]:
        """How the script ended, and the lines that it printed."""
        result = subprocess.run(
            ["bash", "-c", FETCHED, f"{web.ready}/app/{script}"], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT, text=True, timeout=15,
            env=self.environment(HOME=str(home or self.home), MURMELI_SANDBOX_PACE="0", MURMELI_UI="1"))
        return result.returncode, result.stdout.splitlines()

    def test_the_whole_installation(self):
        web = Web(self, "--engine-arguments", "--processing-seconds 0 --no-telegram")
        status, lines = self.fetch(web)
        self.assertEqual((status, steps(lines, "start"), steps(lines, "done")), (0, STEPS, STEPS))
        self.assertIs(json.loads((self.root / "state.json").read_text())["telegram_connected"], False)

        # The scripts run on what is installed beside them, and take their faults from this home.
        (self.root / ".sandbox-engine-faults.json").write_text('{"pdf": "fail", "reprotocol": "fail"}')
        for script, *arguments in (("protocol_pdf.py", "a.json", "a.pdf"), ("reprotocol.py", "a.json")):
            result = subprocess.run([self.root / ".venv/bin/python", self.root / "pipeline" / script, *arguments],
                                    env=self.environment(), capture_output=True, text=True, timeout=15)
            self.assertEqual((result.returncode, result.stderr), (1, "sandbox: this failure was asked for\n"))
        self.assertEqual(web.end(), 0)
        Engine(self)  # the server's own is gone, and another may have the home

    def test_it_goes_on_where_it_failed(self):
        web = Web(self, "--fail-install", "engine")
        status, lines = self.fetch(web)
        self.assertEqual((status, lines[-1], steps(lines, "done")), (1, "@@fail|engine", STEPS[:3]))
        web.control("install", fail_at=None)
        web.control("faults", path="/app/engine/scene.py", fault="cut")
        self.assertEqual(self.fetch(web)[0], 1)
        self.assertFalse((self.root / "pipeline/scene.py").exists())
        web.control("faults")
        engine = Engine(self)  # one that runs already is left alone
        status, lines = self.fetch(web)
        self.assertEqual((status, steps(lines, "done")), (0, STEPS))
        self.assertEqual(set(steps(lines, "progress")), {"asr", "models"})  # what was done is not done again
        self.assertEqual((web.shown("service")["running"], engine.child.poll()), (False, None))

    def test_another_home_is_refused(self):
        web = Web(self)
        for script in ("install.sh", "update.sh"):
            status, [line] = self.fetch(web, script, home=self.real_home)
            self.assertEqual(status, 1)
            self.assertIn(str(self.home), line)
        self.assertEqual(list(self.real_home.iterdir()), [])
        self.assertEqual([self.fetch(web, "update.sh")[0] for _ in range(2)], [0, 0])
        self.assertEqual(len((self.root / ".sandbox-updates.log").read_text().splitlines()), 2)
