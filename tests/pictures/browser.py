# SPDX-License-Identifier: MIT
"""A headless Chromium for tests of pages."""

import base64
import json
import os
import tempfile
from pathlib import Path

from selenium import webdriver
from selenium.webdriver.chrome.options import Options
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.support.ui import WebDriverWait

# How long anything may take before it counts as hung, in seconds.
HUNG = 300

# The share of pixels in which a screenshot may differ from the one that is kept.
MOST_DIFFERENT = 0.01

# How much two screenshots differ: the share of pixels in which a colour is further off than smoothed edges are. Browsers
# round the height of a page to one pixel or the other.
COMPARE = """
const [kept, taken, done] = arguments;
const load = (data) => new Promise((loaded) => {
  const image = new Image();
  image.onload = () => {
    const canvas = document.createElement("canvas");
    [canvas.width, canvas.height] = [image.width, image.height];
    const context = canvas.getContext("2d");
    context.drawImage(image, 0, 0);
    loaded(context.getImageData(0, 0, image.width, image.height));
  };
  image.src = "data:image/png;base64," + data;
});
Promise.all([load(kept), load(taken)]).then(([a, b]) => {
  if (Math.abs(a.width - b.width) > 1 || Math.abs(a.height - b.height) > 1)
    return done(`${a.width}x${a.height}, ${b.width}x${b.height}`);
  const [width, height] = [Math.min(a.width, b.width), Math.min(a.height, b.height)];
  let differing = 0;
  for (let y = 0; y < height; ++y)
    for (let x = 0; x < width; ++x)
      if ([0, 1, 2].some((channel) =>
          Math.abs(a.data[4 * (y * a.width + x) + channel] - b.data[4 * (y * b.width + x) + channel]) > 80)) ++differing;
  done(differing / (width * height));
});
"""


class Browser:
    def __init__(self):
        options = Options()
        self._profile = tempfile.TemporaryDirectory()
        for argument in ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage",
                         "--window-size=1400,1000", "--force-device-scale-factor=1", "--hide-scrollbars",
                         f"--user-data-dir={self._profile.name}"):
            options.add_argument(argument)
        options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
        self.driver = webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)
        self.driver.set_page_load_timeout(HUNG)
        self.driver.set_script_timeout(HUNG)

    def close(self):
        self.driver.quit()
        self._profile.cleanup()

    def open(self, page):
        self.visit(Path(page).resolve().as_uri())

    def visit(self, address):
        self.driver.get_log("browser")
        self.driver.get(address)

    def wait_for(self, script, *arguments):
        """Waits until a script returns something true, and returns it."""
        return WebDriverWait(self.driver, HUNG, poll_frequency=0.05).until(lambda _: self.run(script, *arguments))

    def run(self, script, *arguments):
        return self.driver.execute_script(script, *arguments)

    def complaints(self):
        """What the console holds: errors, and whatever the page's policy has stopped."""
        return [entry["message"] for entry in self.driver.get_log("browser")]

    def emulate(self, media="", dark=False):
        self.driver.execute_cdp_cmd("Emulation.setEmulatedMedia", {
            "media": media,
            "features": [{"name": "prefers-color-scheme", "value": "dark" if dark else "light"}]})

    def pdf(self):
        return base64.b64decode(self.driver.execute_cdp_cmd("Page.printToPDF", {})["data"])

    def names(self, role):
        """The names of all elements of a role, as a screen reader has them; some browsers leave a space at their end."""
        self.driver.execute_cdp_cmd("Accessibility.enable", {})
        nodes = self.driver.execute_cdp_cmd("Accessibility.getFullAXTree", {})["nodes"]
        return [node.get("name", {}).get("value", "").strip() for node in nodes
                if not node.get("ignored") and node.get("role", {}).get("value") == role]

    def looks_like(self, kept, taken):
        """Whether a screenshot, as base64, is one that is kept, which KEEP_SCREENSHOTS=1 takes anew; else what differs."""
        if os.environ.get("KEEP_SCREENSHOTS"):
            kept.write_bytes(base64.b64decode(taken))
        different = self.difference(base64.b64encode(kept.read_bytes()).decode(), taken)
        if isinstance(different, (int, float)) and different < MOST_DIFFERENT:
            return True
        return f"{kept}: {different}"

    def difference(self, kept, taken):
        """The share of differing pixels of two screenshots as base64, or their sizes if these differ."""
        self.driver.get("about:blank")
        return self.driver.execute_async_script(COMPARE, kept, taken)


def data_of(page, kind):
    """The data of a kind in a page."""
    begin = f'<script type="application/json" data-is="{kind}">'
    return [json.loads(line.removeprefix(begin).removesuffix("</script>"))
            for line in page.split("\n") if line.startswith(begin)]
