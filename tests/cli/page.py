#!/usr/bin/env python3
"""Looks at a report's page in headless Chromium.

    page.py PAGE.html [PICTURE-PREFIX]

Every section is there, nothing overlaps or leaves the page at three widths, tables sort by the
keyboard, no script fails and no request leaves the page. One line a check, as tests/support has it.
With a prefix, pictures of every width, light and dark, are written.
"""
import base64
import json
import os
import shutil
import subprocess
import sys
import tempfile

WIDTHS = (360, 800, 1280)
SECTIONS = ("verdict", "summary", "ramps", "histogram", "gamut", "inkmap", "worst", "groups", "prices", "purity", "file")

OVERLAPS = """(() => {
  const boxes = [...document.querySelectorAll('h1,h2,h3,p,figure,.scroll,.verdict')]
      .filter(e => !e.parentElement.closest('figure,.scroll,.verdict'))
      .map(e => ({e, b: e.getBoundingClientRect()})).filter(x => x.b.width && x.b.height);
  const found = [];
  for (let i = 0; i < boxes.length; ++i)
    for (let j = i + 1; j < boxes.length; ++j) {
      const a = boxes[i].b, b = boxes[j].b;
      if (a.left < b.right - 1 && b.left < a.right - 1 && a.top < b.bottom - 1 && b.top < a.bottom - 1)
        found.push(boxes[i].e.tagName + ' ' + boxes[i].e.textContent.slice(0, 40) + ' / ' +
                   boxes[j].e.tagName + ' ' + boxes[j].e.textContent.slice(0, 40));
    }
  for (const svg of document.querySelectorAll('svg')) {
    const texts = [...svg.querySelectorAll('text')].map(t => ({t, b: t.getBoundingClientRect()}));
    const frame = svg.getBoundingClientRect();
    for (let i = 0; i < texts.length; ++i) {
      const a = texts[i].b;
      if (a.left < frame.left - 1 || a.right > frame.right + 1 || a.top < frame.top - 1 || a.bottom > frame.bottom + 1)
        found.push('text outside its picture: ' + texts[i].t.textContent);
      for (let j = i + 1; j < texts.length; ++j) {
        const b = texts[j].b;
        if (a.left < b.right - 1 && b.left < a.right - 1 && a.top < b.bottom - 1 && b.top < a.bottom - 1)
          found.push('texts: ' + texts[i].t.textContent + ' / ' + texts[j].t.textContent);
      }
    }
  }
  if (document.documentElement.scrollWidth > innerWidth) found.push('wider than the window');
  return found.slice(0, 5).join('; ');
})()"""

FIRST_COLUMN = "[...document.querySelector('section.groups tbody').rows].map(r => +r.cells[2].dataset.v)"


class Browser:
    """Chromium, spoken to through two pipes."""

    def __init__(self, folder):
        to_read, self.out = os.pipe()
        self.back, to_write = os.pipe()

        def pipes():
            os.dup2(to_read, 63)
            os.dup2(to_write, 64)
            os.dup2(63, 3)
            os.dup2(64, 4)

        self.process = subprocess.Popen(
            [shutil.which("chromium"), "--headless=new", "--no-sandbox", "--disable-gpu", "--remote-debugging-pipe",
             "--user-data-dir=" + folder, "--disable-component-update", "--no-first-run", "about:blank"],
            preexec_fn=pipes, close_fds=False, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(to_read)
        os.close(to_write)
        self.rest, self.number, self.events, self.session = b"", 0, [], None
        target = self.call("Target.createTarget", url="about:blank")["targetId"]
        self.session = self.call("Target.attachToTarget", targetId=target, flatten=True)["sessionId"]
        for domain in ("Page", "Runtime", "Network", "Log"):
            self.call(domain + ".enable")

    def read(self):
        while b"\0" not in self.rest:
            part = os.read(self.back, 1 << 20)
            if not part:
                sys.exit("chromium has ended")
            self.rest += part
        message, self.rest = self.rest.split(b"\0", 1)
        return json.loads(message)

    def call(self, method, **parameters):
        self.number += 1
        message = {"id": self.number, "method": method, "params": parameters}
        if self.session:
            message["sessionId"] = self.session
        os.write(self.out, json.dumps(message).encode() + b"\0")
        while True:
            answer = self.read()
            if answer.get("id") == self.number:
                if "error" in answer:
                    sys.exit(f"{method}: {answer['error']}")
                return answer["result"]
            self.events.append(answer)

    def wait(self, method):
        while not any(event.get("method") == method for event in self.events):
            self.events.append(self.read())

    def value(self, expression):
        return self.call("Runtime.evaluate", expression=expression, returnByValue=True)["result"].get("value")

    def press(self, key, code):
        text = {"Enter": "\r", " ": " "}.get(key, "")
        self.call("Input.dispatchKeyEvent", type="keyDown", key=key, code=code, text=text,
                  windowsVirtualKeyCode={"Enter": 13, "Tab": 9}.get(key, 32))
        self.call("Input.dispatchKeyEvent", type="keyUp", key=key, code=code)


def main():
    page = "file://" + os.path.realpath(sys.argv[1])
    prefix = sys.argv[2] if len(sys.argv) > 2 else None
    failures = 0

    def check(what, problem):
        nonlocal failures
        print(f"{'not ok' if problem else 'ok'} - {what}" + (f"\n    {problem}" if problem else ""))
        failures += bool(problem)

    with tempfile.TemporaryDirectory(ignore_cleanup_errors=True) as folder:
        browser = Browser(folder)
        browser.call("Page.navigate", url=page)
        browser.wait("Page.loadEventFired")
        for section in SECTIONS:
            check(f"the section {section} is there", "" if browser.value(f"!!document.querySelector('.{section}')") else "missing")
        for width in WIDTHS:
            browser.call("Emulation.setDeviceMetricsOverride", width=width, height=900, deviceScaleFactor=1, mobile=False)
            check(f"nothing overlaps at {width} pixels", browser.value(OVERLAPS))
            for scheme in ("light", "dark") if prefix else ():
                browser.call("Emulation.setEmulatedMedia", features=[{"name": "prefers-color-scheme", "value": scheme}])
                size = browser.call("Page.getLayoutMetrics")["cssContentSize"]
                shot = browser.call("Page.captureScreenshot", format="png", captureBeyondViewport=True,
                                    clip={"x": 0, "y": 0, "width": width, "height": size["height"], "scale": 1})
                with open(f"{prefix}-{width}-{scheme}.png", "wb") as file:
                    file.write(base64.b64decode(shot["data"]))
        browser.call("Emulation.setEmulatedMedia", features=[])

        # By the keyboard alone: tab until the third head of the table of groups has the focus.
        browser.value("document.activeElement.blur()")
        for _ in range(200):
            browser.press("Tab", "Tab")
            if browser.value("document.activeElement.closest('section')?.className == 'groups' && "
                             "document.activeElement.closest('th')?.cellIndex == 2"):
                break
        before = browser.value(FIRST_COLUMN)
        browser.press("Enter", "Enter")
        up = browser.value(FIRST_COLUMN)
        browser.press("Enter", "Enter")
        down = browser.value(FIRST_COLUMN)
        check("Enter on a head sorts the table", "" if up == sorted(before) and up != before else f"{before} became {up}")
        check("and a second Enter turns it", "" if down == sorted(before, reverse=True) else f"{before} became {down}")
        check("the head says how it is sorted",
              "" if browser.value("document.activeElement.closest('th').ariaSort") == "descending" else "it does not")
        check("the focus can be seen",
              "" if browser.value("getComputedStyle(document.activeElement).outlineStyle") != "none" else "no outline")

        asked = [event["params"]["request"]["url"] for event in browser.events
                 if event.get("method") == "Network.requestWillBeSent"]
        check("no request leaves the page", " ".join(url for url in asked if url != page and not url.startswith("data:")))
        wrong = [json.dumps(event["params"])[:300] for event in browser.events
                 if event.get("method") in ("Runtime.exceptionThrown", "Log.entryAdded")]
        check("no script fails", " ".join(wrong))
        browser.process.terminate()
        browser.process.wait()
    sys.exit(failures > 0)


main()
