#!/usr/bin/env python3
"""Looks at a report's pages without a browser.

    page_form.py ENGLISH.html JAPANESE.html CHINESE.html

They are well-formed HTML, ask for nothing from elsewhere, have every section, whole tables whose
numbers sort, a text for each picture, and the same shape in three languages, each in its own words.
Says the first thing that is not so, and ends with status 1.
"""
import re
import sys
from html.parser import HTMLParser

VOID = {"meta", "link"}
ELEMENTS = VOID | {"html", "head", "title", "style", "body", "main", "h1", "h2", "h3", "p", "section", "div", "strong",
                   "br", "ul", "li", "table", "thead", "tbody", "tr", "th", "td", "button", "figure", "figcaption",
                   "span", "i", "script", "svg", "rect", "polyline", "polygon", "path", "text", "circle", "line"}
EMPTY = VOID | {"br"}
SECTIONS = ("verdict", "summary", "ramps", "histogram", "gamut", "inkmap", "worst", "groups", "prices", "purity", "file")
FETCHING = {"src", "href", "srcset", "action", "data", "poster", "background", "formaction", "xlink:href"}
NUMBER = re.compile(r"-?\d+(\.\d+)?$")


def fail(what):
    sys.exit(f"{sys.argv[at + 1]}: {what}")


class Page(HTMLParser):
    def __init__(self):
        super().__init__(convert_charrefs=True)
        self.open, self.shape, self.classes, self.heads, self.texts = [], [], set(), [], {}
        self.widths, self.language, self.rows = [], None, 0

    def handle_starttag(self, tag, attributes, closed=False):
        names = [name for name, _ in attributes]
        given = dict(attributes)
        if tag not in ELEMENTS:
            fail(f"has an element {tag}")
        if len(names) != len(set(names)):
            fail(f"{tag} has an attribute twice")
        for name, value in attributes:
            if name in FETCHING and not (value or "").startswith("data:"):
                fail(f"{tag} asks for {value}")
            if name.startswith("on"):
                fail(f"{tag} has a script of its own, {name}")
            if name == "style" and "url(" in (value or ""):
                fail(f"the style of {tag} asks for something")
        if tag == "html":
            self.language = given.get("lang")
        if tag == "svg" and not given.get("aria-label"):
            fail("a picture has no text for those who do not see it")
        if "data-v" in given and not NUMBER.match(given["data-v"]):
            fail(f"{given['data-v']} does not sort as a number")
        self.classes.update((given.get("class") or "").split())
        if tag == "thead":
            self.widths.append(0)
        if tag == "th":
            self.widths[-1] += 1
        if tag == "tr" and "tbody" in self.open:
            self.rows = 0
        if tag == "td":
            self.rows += 1
        self.shape.append(tag)
        if tag not in EMPTY and not closed:
            self.open.append(tag)

    def handle_startendtag(self, tag, attributes):
        self.handle_starttag(tag, attributes, closed=True)

    def handle_endtag(self, tag):
        if not self.open or self.open[-1] != tag:
            fail(f"{tag} ends where {self.open[-1:] or 'nothing'} is open")
        self.open.pop()
        if tag == "tr" and "tbody" in self.open and self.rows != self.widths[-1]:
            fail(f"a row has {self.rows} cells under {self.widths[-1]} heads")

    def handle_data(self, data):
        inside = self.open[-1] if self.open else ""
        if inside in ("style", "script"):
            if re.search(r"@import|url\(|https?:|fetch\(|XMLHttpRequest|import\(|sendBeacon|WebSocket", data):
                fail(f"the {inside} asks for something from elsewhere")
        elif inside in ("h1", "h2", "button", "p", "title"):
            self.heads.append((inside, data))


pages = []
for at, name in enumerate(sys.argv[1:]):
    with open(name, encoding="utf-8", errors="strict") as file:
        text = file.read()
    if not text.startswith("<!doctype html>"):
        fail("does not say that it is HTML")
    if "\x00" in text or re.search(r"[\x01-\x08\x0b\x0c\x0e-\x1f]", text):
        fail("holds control characters")
    page = Page()
    page.feed(text)
    page.close()
    if page.open:
        fail(f"{page.open} stay open")
    for section in SECTIONS:
        if section not in page.classes:
            fail(f"has no {section}")
    pages.append(page)

for at, (page, language) in enumerate(zip(pages, ("en", "ja", "zh"))):
    if page.language != language:
        fail(f"is in {page.language} where {language} was asked for")
    if page.shape != pages[0].shape:
        fail("has another shape than the English one")
    if at == 0:
        continue
    # A head of letters that stands in both languages was not translated; numbers and units are alike.
    same = {text for (_, text), (_, english) in zip(page.heads, pages[0].heads)
            if text == english and re.search("[A-Za-z]{4}", text)}
    if same:
        fail(f"says {sorted(same)[0]!r} in English")
