#!/usr/bin/python3
"""Opens the page from disk in Chromium and holds what it shows against what kwapayload says.

usage: page_test.py PAGE INSTALLER KWAPAYLOAD FOLDER      leaves its files and pictures in FOLDER
"""
import base64
import json
import pathlib
import subprocess
import sys
import time

from selenium import webdriver
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys

page, installer, tool, folder = (pathlib.Path(argument).resolve() for argument in sys.argv[1:])
sample = installer.read_bytes()
failures = 0


def check(is_good, what):
    global failures
    if not is_good:
        failures += 1
        print(f"page_test.py: FAILED: {what}", file=sys.stderr)


def made(name, content):
    path = folder / name
    path.write_bytes(content)
    return path


def changed(*replacements):
    content = sample
    for old, new in replacements:
        assert len(old) == len(new) and old in content
        content = content.replace(old, new)
    return content


def tool_json(*arguments):
    return json.loads(subprocess.run([tool, *arguments, "--json"], stdout=subprocess.PIPE, check=False).stdout)


def start():
    options = webdriver.ChromeOptions()
    for argument in ("--headless=new", "--no-sandbox", "--disable-dev-shm-usage", "--force-color-profile=srgb",
                     "--hide-scrollbars"):
        options.add_argument(argument)
    options.set_capability("goog:loggingPrefs", {"performance": "ALL", "browser": "ALL"})
    return webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)


def state():
    return find("body").get_attribute("data-state")


def find(selector):
    return browser.find_element(By.CSS_SELECTOR, selector)


def text_of(selector):
    """All text, also what is folded."""
    return browser.execute_script("return document.querySelector(arguments[0])?.textContent ?? ''", selector)


def press(key):
    webdriver.ActionChains(browser).send_keys(key).perform()


def give(*paths):
    browser.execute_script("document.body.dataset.state = 'given'")
    find("input[type=file]").send_keys("\n".join(str(path) for path in paths))


def examine(*paths):
    give(*paths)
    for _ in range(600):
        if state() in ("done", "failed"):
            break
        time.sleep(0.1)
    return state()


def leaves(value):
    if isinstance(value, dict):
        value = list(value.values())
    return [leaf for item in value for leaf in leaves(item)] if isinstance(value, list) else [value]


def check_shown(facts, selector, about):
    shown = text_of(selector)
    for fact in leaves(facts):
        if fact is not None and not isinstance(fact, bool):
            fact = f"{fact:,}" if isinstance(fact, int) else fact
            check(fact in shown, f"{about}: '{fact}' is not shown")


def check_facts(path):
    """Each fact of the tool's JSON must be on the page, and those of a file in its row."""
    contents = tool_json("list", path)
    findings = tool_json("verify", path)["findings"]
    rows = browser.execute_script("""return [...document.querySelectorAll('.files tbody tr')].map(
        (row) => [...row.cells].slice(0, 7).map((cell) => cell.textContent))""")
    expected = [[file["archive"], file["name"], f"{file['size']:,}", file["version"] or "", file["kind"],
                 ", ".join(signature["signer"] + " (BROKEN)" * bool(signature["fault"])
                           for signature in file["signatures"] or []),
                 {None: "", True: "yes", False: "NO"}[file["inCatalog"]]] for file in contents["files"]]
    check(rows == expected, f"{path.name}: {rows} instead of {expected}")
    del contents["files"]
    contents["package"]["version"] = contents["package"]["version"].split(",")
    (contents["program"] or {}).pop("configuration", None)
    check_shown([contents, findings], "article", path.name)
    check(("In order" in text_of(".verdict")) == (not findings), f"{path.name}: verdict '{text_of('.verdict')}'")


def check_requests():
    for entry in browser.get_log("performance"):
        message = json.loads(entry["message"])["message"]
        if message["method"] == "Network.requestWillBeSent":
            url = message["params"]["request"]["url"]
            check(url == page.as_uri() or url.startswith("blob:"), f"a request for {url}")
    for entry in browser.get_log("browser"):
        check(False, f"the console says: {entry['message']}")


def check_keyboard():
    """From the file to the copied ticket with keys alone, but for the system's own window to choose a file."""
    browser.execute_cdp_cmd("Browser.grantPermissions",
                            {"permissions": ["clipboardReadWrite", "clipboardSanitizedWrite"]})
    browser.get(page.as_uri())
    press(Keys.TAB)
    active = browser.switch_to.active_element
    check(active.get_attribute("type") == "file", "the Tab key does not begin with the choice of a file")
    examine(installer)
    press(Keys.TAB)
    active = browser.switch_to.active_element
    check(active.get_attribute("data-action") == "copy", "the Tab key does not go on with the ticket")
    press(Keys.ENTER)
    time.sleep(0.3)
    ticket = browser.execute_async_script("navigator.clipboard.readText().then(arguments[0], arguments[0])")
    for fact in (installer.name, "Verdict: In order", "marlin_usb.inf"):
        check(fact in ticket, f"the ticket lacks '{fact}': {ticket[:200]}")


def picture(name, width, scheme):
    browser.execute_cdp_cmd("Emulation.setEmulatedMedia",
                            {"features": [{"name": "prefers-color-scheme", "value": scheme}]})
    browser.execute_cdp_cmd("Emulation.setDeviceMetricsOverride",
                            {"width": width, "height": 900, "deviceScaleFactor": 1, "mobile": False})
    time.sleep(0.3)
    scrolled = browser.execute_script("return document.documentElement.scrollWidth")
    check(scrolled <= width, f"{name} is {scrolled} pixels wide")
    shot = browser.execute_cdp_cmd("Page.captureScreenshot", {"captureBeyondViewport": True, "format": "png"})
    (folder / f"{name}.png").write_bytes(base64.b64decode(shot["data"]))


def pictures(name):
    for scheme in ("light", "dark"):
        for width in (1200, 800, 360):
            picture(f"{name}-{scheme}-{width}", width, scheme)
    browser.execute_cdp_cmd("Emulation.clearDeviceMetricsOverride", {})


damaged = made("damaged.exe", sample[: len(sample) * 2 // 3])
wrong = made("wrong.exe", changed((b"MZ\x90", b"MZ\x91"), (b"Marlin R1", b"Marlin R7")))
newer = made("newer.exe", changed((b"1.0.42.0", b"1.0.43.0"), (b"eula_de.txt", b"eula_du.txt")))
hostile_name = "<img src onerror=xx()>"
hostile = made("<img src=x onerror=xx()>.exe", changed((b"marlin_usb_asio_64.dll", hostile_name.encode())))
text = made("notes.txt", b"Not an installer.\r\n")
empty = made("empty.exe", b"")
big = folder / "big.exe"
with big.open("wb") as file:
    file.truncate(400 << 20)

browser = start()
try:
    browser.get(page.as_uri())
    check(state() == "ready", "is not ready")
    pictures("start")
    # File, state at the end, what the page must show.
    for path, end, facts in [
        (installer, "done", ["In order"]),
        (damaged, "done", ["truncated", "What to do"]),
        (wrong, "done", ["error"]),
        (hostile, "done", [hostile_name, hostile.name]),
        (text, "failed", ["notes.txt is neither an installer nor a payload archive."]),
        (empty, "failed", ["empty.exe is neither an installer nor a payload archive."]),
    ]:
        check(examine(path) == end, f"{path.name}: {state()}: {text_of('#status')}")
        for fact in facts:
            check(fact in text_of("main"), f"{path.name}: '{fact}' is not shown")
        if end == "done" and path != damaged:
            check_facts(path)
        if path in (installer, wrong, text, damaged):
            pictures(path.stem)
    check(not browser.find_elements(By.CSS_SELECTOR, "img[src='x'], img[onerror]"), "a name became markup")

    examine(installer)
    browser.execute_script("""const select = document.querySelector('.wizard select');
        select.value = '0x0407'; select.dispatchEvent(new Event('change'))""")
    time.sleep(0.5)
    for fact in ("Willkommen beim KWA Marlin USB", "KWA Geräte", "für die Treibersoftware"):
        check(fact in text_of(".drawings"), f"the German wizard lacks '{fact}'")
    check(browser.execute_script("return document.querySelector('.welcome img').naturalHeight") == 305, "no watermark")
    find("[aria-label='View marlin_usb.inf']").click()
    time.sleep(0.5)
    check("[Manufacturer]" in text_of("#viewer pre"), "the INF is not shown")
    find("#viewer button").click()

    check(examine(installer, newer) == "done", "two files")
    compared = tool_json("compare", installer, newer)
    for file in compared["removed"] + compared["added"]:
        check_shown([file[key] for key in ("archive", "name", "size", "kind")], ".comparison", newer.name)
    for key in ("changed", "package", "hardwareIds", "installer", "programParts", "configuration"):
        check_shown(compared[key], ".comparison", newer.name)
    pictures("comparison")

    give(big)
    time.sleep(0.2)
    check(state() == "working", f"the large file: {state()}")
    check(examine(text) == "failed" and "notes.txt" in text_of("#status"), "a second file while the first is read")
    time.sleep(1)
    check("notes.txt" in text_of("#status"), "the first file came back")
    check_keyboard()
    check_requests()
finally:
    browser.quit()
    big.unlink()
sys.exit(failures > 0)
