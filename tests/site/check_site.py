#!/usr/bin/python3
"""Opens a site of `sfg docs` in a browser without a screen: check_site.py SITE [--axe FILE] [--links]

Tries the search, every link, the keyboard, light and dark; no page may write an error to the console or fetch anything.
With axe-core (its file axe.min.js, of npm's package of that name) every kind of page passes its rules. Exit status 77: the browser is not installed.
"""
import argparse
import os
import pathlib
import sys
import urllib.parse
from html.parser import HTMLParser

try:
    # The browser's driver; following links needs none of it.
    from selenium import webdriver
    from selenium.webdriver.chrome.service import Service
    from selenium.webdriver.common.by import By
    from selenium.webdriver.common.keys import Keys
    from selenium.webdriver.support.ui import WebDriverWait
except ImportError:
    webdriver = None

faults = []


def fault(text):
    faults.append(text)
    print(text)


class Page(HTMLParser):
    """What a page names: links, pictures, scripts, and its own anchors."""

    def __init__(self, text):
        super().__init__()
        self.named = []
        self.anchors = set()
        self.feed(text)

    def handle_starttag(self, tag, attributes):
        for key, value in attributes:
            if key in ("href", "src", "action"):
                self.named.append(value)
            if key == "id":
                if value in self.anchors:
                    fault(f"the anchor {value} is there twice")
                self.anchors.add(value)


def check_links(site):
    """Every link of every page leads to a file of the site, and to an anchor that is there; every page is reached."""
    pages = {path: Page(path.read_text()) for path in site.rglob("*.html")}
    reached = set()
    for path, page in pages.items():
        for name in page.named:
            if name == "data:,":
                continue
            parts = urllib.parse.urlsplit(name)
            if parts.scheme or parts.netloc or name.startswith("/"):
                fault(f"{path.relative_to(site)}: {name} is outside of the site")
                continue
            target = path if not parts.path else (path.parent / urllib.parse.unquote(parts.path)).resolve()
            if not target.is_file():
                fault(f"{path.relative_to(site)}: {name} is not there")
            elif parts.fragment and parts.fragment not in pages[target].anchors:
                fault(f"{path.relative_to(site)}: {name}: no such anchor")
            reached.add(target)
    for path in pages:
        if path not in reached:
            fault(f"{path.relative_to(site)}: no link leads there")
    return pages


def open_browser(dark=False):
    options = webdriver.ChromeOptions()
    options.binary_location = "/usr/bin/chromium"
    for argument in ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage",
                     "--window-size=1000,800"):
        options.add_argument(argument)
    if dark:
        options.add_argument("--blink-settings=preferredColorScheme=0")
    options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
    return webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)


def visit(browser, url):
    browser.get(url)
    for entry in browser.get_log("browser"):
        fault(f"{url}: {entry['message']}")
    for entry in browser.get_log("performance"):
        if '"Network.requestWillBeSent"' in entry["message"] and '"url":"http' in entry["message"]:
            fault(f"{url}: fetches {entry['message']}")


def shown(browser):
    return browser.execute_script(
        "return Array.from(document.querySelectorAll('[data-words]')).filter((row) => row.checkVisibility())"
        ".map((row) => row.querySelector('a').textContent)")


def check_search(browser, site, word, expected):
    visit(browser, (site / "index.html").as_uri())
    everything = len(browser.find_elements(By.CSS_SELECTOR, "[data-words]"))
    field = browser.find_element(By.ID, "q")
    field.send_keys(word)
    found = shown(browser)
    if expected not in found or len(found) >= everything:
        fault(f"the search for {word} shows {len(found)} of {everything}: {found[:5]}")
    status = browser.find_element(By.ID, "status").text
    if status != f'{len(found)} of {everything} fragments for "{word}"':
        fault(f"the search says: {status}")
    for topic in browser.find_elements(By.CLASS_NAME, "topic"):
        if topic.is_displayed() and not topic.find_elements(By.CSS_SELECTOR, "[data-words]:not([hidden])"):
            fault("a topic without fragments is shown")
    field.clear()
    field.send_keys("no such word at all")
    if shown(browser):
        fault("the search finds what is not there")
    # From another page, as a form does it.
    visit(browser, next((site / "fragments").iterdir()).as_uri())
    browser.find_element(By.ID, "q").send_keys(word, Keys.ENTER)
    WebDriverWait(browser, 30).until(lambda at: "?q=" in at.current_url and at.execute_script(
        "return document.readyState") == "complete")
    if shown(browser) != found:
        fault(f"the search from a page shows {shown(browser)[:5]}")


def check_keyboard(browser, site):
    """The first key leads past the head; everything that scrolls or is pressed is reached."""
    visit(browser, next((site / "fragments").iterdir()).as_uri())
    active = browser.switch_to.active_element
    active.send_keys(Keys.TAB)
    first = browser.switch_to.active_element
    if first.text != "Skip to the content":
        fault(f"the first stop of the keyboard is {first.text!r}")
    first.send_keys(Keys.ENTER)
    if browser.switch_to.active_element.tag_name != "main":
        fault("the first link does not lead to the content")
    wanted = len(browser.find_elements(By.CSS_SELECTOR, "main a, main pre, main .wide"))
    stops = set()
    for _ in range(wanted + 2):
        browser.switch_to.active_element.send_keys(Keys.TAB)
        element = browser.switch_to.active_element
        if element.tag_name != "body":
            stops.add(element.id)
    if len(stops) < wanted:
        fault(f"the keyboard reaches {len(stops)} of {wanted} places")


def check_axe(browser, url, source):
    visit(browser, url)
    browser.execute_script(source)
    found = browser.execute_async_script(
        "const done = arguments[0]; axe.run({preload: false}).then((r) => done(r.violations.map((v) => "
        "v.id + ': ' + v.nodes.map((n) => n.target + ' ' + (n.failureSummary || '')).join('; '))));")
    for violation in found:
        fault(f"{url}: {violation[:600]}")


def ground(browser):
    return browser.execute_script("return getComputedStyle(document.body).backgroundColor")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("site", type=pathlib.Path)
    parser.add_argument("--axe", type=pathlib.Path)
    parser.add_argument("--links", action="store_true", help="follow the links only, without a browser")
    parser.add_argument("--word", default="brick wall")
    parser.add_argument("--expected", default="brickColor")
    given = parser.parse_args()
    site = given.site.resolve()
    pages = check_links(site)
    if given.links:
        print(f"{len(pages)} pages, {len(faults)} faults")
        sys.exit(1 if faults else 0)
    missing = [name for name, path in (("chromium", "/usr/bin/chromium"), ("chromium-driver", "/usr/bin/chromedriver"))
               if not os.path.exists(path)] + ([] if webdriver else ["python3-selenium"])
    if missing:
        print("not tried: " + ", ".join(missing) + " not installed")
        sys.exit(1 if faults else 77)
    # A page of each kind; the others differ in their text.
    kinds = [site / name for name in ("index.html", "gallery.html", "includes.html") if (site / name).exists()]
    for folder in ("fragments", "includes"):
        kinds += sorted((site / folder).iterdir())[:2] if (site / folder).exists() else []
    axe = given.axe.read_text() if given.axe and given.axe.exists() else None
    grounds = []
    for dark in (False, True):
        browser = open_browser(dark)
        try:
            if not dark:
                check_search(browser, site, given.word, given.expected)
                check_keyboard(browser, site)
            for path in kinds[:1] + kinds[-3:-2] if dark else kinds:
                if axe:
                    check_axe(browser, path.as_uri(), axe)
                else:
                    visit(browser, path.as_uri())
            grounds.append(ground(browser))
        finally:
            browser.quit()
    if grounds[0] == grounds[1]:
        fault(f"light and dark have one ground: {grounds[0]}")
    print(f"{len(pages)} pages, {len(faults)} faults" + ("" if axe else "; not tried: axe-core is not there"))
    sys.exit(1 if faults else 0)


main()
