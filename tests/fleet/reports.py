"""Reports of machines that don't exist, with all keys that a report has."""

import datetime
import json

ITEM = {"kind": "plugin", "name": "", "factory": "FilterFactory", "interface": "LADSPA", "plugin": "", "id": "",
        "title": "", "depth": "", "coder": "", "implementation": "", "codec": "", "input": "", "file": None,
        "verdict": "good", "reason": "", "text": "", "remarks": [], "seconds": 0.01, "phase": "", "carried": False,
        "accepted": False, "checked": "2026-01-31T12:00:00.000Z", "package": "", "company": [], "spoils": [],
        "repro": []}  # fmt: skip


def make_item(name, **others):
    file = {"path": f"/usr/lib/ladspa/{name}.so", "size": 4711, "modified": "2026-01-31T12:00:00.000000000Z",
            "build_id": "0123456789abcdef0123456789abcdef01234567"}  # fmt: skip
    return {**ITEM, "name": name, "file": file, **others}


def make_bad_item(name, package, verdict="crashed"):
    return make_item(name, verdict=verdict, reason="SIGSEGV", text="last words\n" * 10, package=f"{package} 1.0-1",
                     repro=["/usr/lib/assayer/Assayer", "plugins", "20"])  # fmt: skip


def make_report(items, started=None):
    started = started or datetime.datetime.now(datetime.timezone.utc).strftime("%Y-%m-%dT%H:%M:%SZ")
    totals = {"plugin": {}, "exercise": {}, "codec": {}}
    for item in items:
        counts = totals[item["kind"]]
        counts[item["verdict"]] = counts.get(item["verdict"], 0) + 1
    return {"schema": 2, "complete": True, "problem": "", "bad_end": "", "notes": [], "started": started, "seconds": 12.5,
            "program": {"name": "assay", "version": "1.1.0"}, "machine": {"system": "Debian", "kernel": "6.1"},
            "installation": "/usr/lib/assayer", "options": {"check": "all"}, "environment": {}, "items": items,
            "runs": [{"arguments": ["plugins", "20"], "end": {"status": 0}, "seconds": 1.5}],
            "totals": totals}  # fmt: skip


def write_report(path, items, started=None):
    path.write_text(json.dumps(make_report(items, started), indent=1))
    return path
