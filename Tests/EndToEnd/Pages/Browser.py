"""Chromium, led through its driver by the WebDriver protocol: what a person does, with keys and
clicks, and what he sees. Only the standard library is needed.

A test module gets the browser of all its tests with Browser.ofModule(); the tests are skipped where
there is none."""

import atexit
import base64
import json
import os
import re
import shutil
import subprocess
import tempfile
import time
import unittest
import urllib.error
import urllib.request

# As the protocol names keys.
ENTER, ESCAPE, TAB, SPACE = "\ue007", "\ue00c", "\ue004", " "
UP, DOWN = "\ue013", "\ue015"
_ELEMENT = "element-6066-11e4-a52e-4f735466cecf"
_SECONDS = 30

# Pictures of what the tests saw, for people; no test compares them.
_SCREENSHOTS = os.environ["PAGES_SCREENSHOTS"]


class Browser:

    _instance = None

    @staticmethod
    def ofModule():
        for program in ("chromium", "chromedriver"):
            if shutil.which(program) is None:
                raise unittest.SkipTest(f"there is no {program}")
        if Browser._instance is None:
            Browser._instance = Browser()
            atexit.register(Browser._instance.close)
        return Browser._instance

    def __init__(self):
        self._profile = tempfile.mkdtemp()
        self._driver = subprocess.Popen(["chromedriver", "--port=0"], stdout=subprocess.PIPE, text=True)
        started = re.compile(r"successfully on port (\d+)")
        port = next(match.group(1) for match in map(started.search, self._driver.stdout) if match)
        self._address = f"http://127.0.0.1:{port}"
        arguments = ["--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage",
                     "--hide-scrollbars", "--user-data-dir=" + self._profile]
        capabilities = {"goog:chromeOptions": {"args": arguments}, "goog:loggingPrefs": {"browser": "ALL"}}
        try:
            session = self._ask("POST", "/session", {"capabilities": {"alwaysMatch": capabilities}})
        except Exception:
            self._end()
            raise
        self._session = "/session/" + session["sessionId"]
        self.be()

    def close(self):
        try:
            self._ask("DELETE", self._session)
        finally:
            self._end()

    def _end(self):
        self._driver.terminate()
        self._driver.wait()
        self._driver.stdout.close()
        shutil.rmtree(self._profile, ignore_errors=True)

    def be(self, width=1200, height=900, dark=False, script=True):
        """Makes the window so large, and the reader's preferences so."""
        self._devTools("Emulation.setDeviceMetricsOverride", width=width, height=height,
                       deviceScaleFactor=1, mobile=width < 600)
        scheme = "dark" if dark else "light"
        self._devTools("Emulation.setEmulatedMedia",
                       features=[{"name": "prefers-color-scheme", "value": scheme}])
        self._devTools("Emulation.setScriptExecutionDisabled", value=not script)
        self._devTools("Emulation.setFocusEmulationEnabled", enabled=True)

    def open(self, address):
        """Opens a page anew, also where only the fragment of the address differs."""
        self._act("POST", "/url", url="about:blank")
        self.console()
        self._act("POST", "/url", url=address)

    def go(self, address):
        """As when somebody changes the address."""
        self._act("POST", "/url", url=address)

    def address(self):
        return self._act("GET", "/url")

    def title(self):
        return self._act("GET", "/title")

    def press(self, keys):
        """Presses and releases one key after another, wherever the focus is."""
        actions = [{"type": kind, "value": key} for key in keys for kind in ("keyDown", "keyUp")]
        self._act("POST", "/actions", actions=[{"type": "key", "id": "keyboard", "actions": actions}])

    def click(self, selector):
        element = self._act("POST", "/element", using="css selector", value=selector)[_ELEMENT]
        self._act("POST", f"/element/{element}/click")

    def see(self, expression, *arguments):
        """What an expression of JavaScript says of the page; it looks and changes nothing."""
        return self._act("POST", "/execute/sync", script="return " + expression, args=arguments)

    def texts(self, selector):
        """The texts of the elements that can be seen, in their order."""
        return self.see("Array.from(document.querySelectorAll(arguments[0]))"
                        ".filter((each) => each.checkVisibility()).map((each) => each.innerText)", selector)

    def focused(self):
        return self.see("document.activeElement.id || document.activeElement.textContent")

    def clipboard(self):
        self._devTools("Browser.grantPermissions", permissions=["clipboardReadWrite", "clipboardSanitizedWrite"])
        return self._act("POST", "/execute/async", args=[],
                         script="navigator.clipboard.readText().then(arguments[0])")

    def console(self):
        """What the console says since it was asked last."""
        return [entry["message"] for entry in self._act("POST", "/se/log", type="browser")]

    def picture(self, name):
        os.makedirs(_SCREENSHOTS, exist_ok=True)
        with open(os.path.join(_SCREENSHOTS, name + ".png"), "wb") as file:
            file.write(base64.b64decode(self._act("GET", "/screenshot")))

    def _devTools(self, command, **parameters):
        return self._act("POST", "/goog/cdp/execute", cmd=command, params=parameters)

    def _act(self, method, path, **parameters):
        return self._ask(method, self._session + path, parameters)

    def _ask(self, method, path, parameters=None):
        body = json.dumps(parameters or {}).encode() if method == "POST" else None
        request = urllib.request.Request(self._address + path, body, {"Content-Type": "application/json"},
                                         method=method)
        # No proxy of the environment is between a browser and its driver.
        opener = urllib.request.build_opener(urllib.request.ProxyHandler({}))
        try:
            with opener.open(request, timeout=120) as response:
                return json.load(response)["value"]
        except urllib.error.HTTPError as error:
            raise AssertionError(f"{path}: {json.load(error)['value']['message']}") from None


class BrowserCase(unittest.TestCase):
    """A test with the browser at its defaults. It ends by looking for unexpected messages in the
    browser's console."""

    @classmethod
    def setUpClass(cls):
        cls.browser = Browser.ofModule()

    def setUp(self):
        self.browser.be()
        self.expectedMessages = []

    def tearDown(self):
        messages = self.browser.console()
        self.assertEqual(len(messages), len(self.expectedMessages), messages)
        for message, expected in zip(messages, self.expectedMessages):
            self.assertIn(expected, message)

    def waitFor(self, expected, look):
        """Waits until what is seen is what is expected."""
        end = time.monotonic() + _SECONDS
        while (seen := look()) != expected and time.monotonic() < end:
            time.sleep(0.02)
        self.assertEqual(seen, expected)
