"""The page in a browser: what its script makes of a report, and how it answers."""

import json
import re
import shutil
import subprocess

import pytest
from conftest import not_sanitized
from test_assay import assay, home  # noqa: F401

pytestmark = [not_sanitized, pytest.mark.skipif(not shutil.which("chromium"), reason="there is no browser")]
PROBE = """<script>
const rows = () => [...document.querySelectorAll('#plugins ~ * tbody th')].map(cell => cell.firstChild.textContent);
const filter = text => { const field = document.querySelector('input[type=search]'); field.value = text;
                         field.dispatchEvent(new Event('input')); return rows(); };
const open = () => { document.querySelector('button.open')?.click(); return rows(); };
const heads = [...document.querySelectorAll('#codecs ~ * thead tr:last-child button')].map(head => head.textContent);
const seen = {result: document.querySelector('.result').textContent, cards: [...document.querySelectorAll('h3')].map(head => head.textContent),
              heads, first: rows(), opened: open(), closed: open(), found: filter('phaser'), text: document.querySelector('.cards').innerText};
document.body.append(Object.assign(document.createElement('pre'), {id: 'seen', textContent: JSON.stringify(seen)}));
</script></body>"""  # fmt: skip


def read(page):
    """What the probe saw."""
    page.write_text(page.read_text().replace("</body>", PROBE))
    command = ["chromium", "--headless", "--no-sandbox", "--disable-gpu", "--dump-dom", page.as_uri()]
    dom = subprocess.run(command, capture_output=True, text=True, timeout=120).stdout
    text = re.search(r'<pre id="seen">(.*?)</pre>', dom, re.S)[1]
    return json.loads(text.replace("&lt;", "<").replace("&gt;", ">").replace("&amp;", "&"))


@pytest.fixture
def make(assay, home):  # noqa: F811
    """A page of reports with these items, each a host."""
    assay.run("plugins", "--plugin", "FfmpegMuxers", "--quiet")
    base = json.loads((home / ".local/state/assayer/report.json").read_text())
    [plain] = base["items"]

    def run(*hosts):
        paths = []
        for at, items in enumerate(hosts):
            paths.append(home / f"{at}.json")
            paths[-1].write_text(json.dumps(base | {"items": [plain | item for item in items]}))
        assay.run("report", *paths, "--html", home / "page.html")
        return read(home / "page.html")

    return run


ITEMS = [
    {"name": "amp", "interface": "LADSPA"},
    {"kind": "exercise", "name": "amp/phaser", "plugin": "amp", "title": "Phaser", "interface": "LADSPA"},
    {"name": "<b>eq", "verdict": "failed", "reason": "<i>odd", "interface": "LV2"},
    {"kind": "codec", "name": "Decoder.MEDIA_FOUNDATION_IMPL.CODEC_ID_AAC", "coder": "Decoder", "verdict": "hung",
     "implementation": "MEDIA_FOUNDATION_IMPL", "codec": "CODEC_ID_AAC", "reason": "20"},
]  # fmt: skip


def test_one_report(make):
    seen = make(ITEMS)
    assert seen["result"] == "2 of 4 items are bad." and seen["cards"] == ["GStreamer AAC decoder", "<b>eq"]
    assert seen["heads"] == ["Codec", "GStreamer"]
    assert seen["first"] == seen["closed"] == ["<b>eq", "amp"] and seen["opened"] == ["<b>eq", "amp", "Phaser"]
    assert seen["found"] == ["amp", "Phaser"], "a filter opens what it finds something in"


def test_several_hosts(make):
    bad = [item | {"verdict": "crashed", "reason": "SIGSEGV"} if item["name"] == "amp" else item for item in ITEMS]
    seen = make(ITEMS, bad, ITEMS)
    assert seen["result"] == "1 of 4 items differs between 3 hosts; 3 are bad on any."
    assert seen["cards"] == ["amp", "GStreamer AAC decoder", "<b>eq"]
