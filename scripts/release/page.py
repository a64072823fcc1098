#!/usr/bin/env python3
"""Usage: page.py SOURCE.md TARGET.html    makes one self-contained page of a document, its pictures inside"""
import base64
import re
import subprocess
import sys
from pathlib import Path

kPage = """<!DOCTYPE html>
<html lang="{language}">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>{title}</title>
<style>
:root {{ color-scheme: light dark; }}
body {{ max-width: 46rem; margin: 2rem auto; padding: 0 1rem; font: 1rem/1.5 "Segoe UI", system-ui, sans-serif; }}
img {{ max-width: 100%; height: auto; }}
table {{ border-collapse: collapse; }}
th, td {{ border: 1px solid #8888; padding: .25rem .6rem; text-align: left; vertical-align: top; }}
code, pre {{ font-family: Consolas, monospace; }}
pre {{ overflow-x: auto; padding: .6rem; background: #8882; }}
</style>
</head>
<body>
{body}
</body>
</html>
"""


def Embedded(match, folder):
    data = base64.b64encode((folder / match.group(1)).read_bytes()).decode("ascii")
    return f'src="data:image/png;base64,{data}"'


def Main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    source = Path(sys.argv[1])
    text = source.read_text(encoding="utf-8")
    # The other documents do not come along: their names stay, without a link.
    text = re.sub(r"(?<!!)\[([^\]]*)\]\((?!https?:)[^)]*\)", r"\1", text)
    body = subprocess.run(["cmark-gfm", "--extension", "table"], input=text, capture_output=True, check=True,
                          encoding="utf-8").stdout
    body = re.sub(r'src="([^":]+\.png)"', lambda match: Embedded(match, source.parent), body)
    title = re.search(r"^# (.*)$", text, re.MULTILINE).group(1)
    language = "de" if source.stem == "anleitung" else "en"
    Path(sys.argv[2]).write_text(kPage.format(language=language, title=title, body=body), encoding="utf-8")


Main()
