"""What the command says of modules and codecs that end runs, forge records or spoil the process."""

import random
import shutil
import signal
import subprocess

import pytest
from conftest import APP, not_sanitized
from parent import Parent
from test_assay import IMPL, assay, home, processes_in  # noqa: F401
from test_parent import ENDING, ENDING_CODECS, GOOD, GOOD_CODECS, REPORTED, REPORTED_CODECS

SIDE_EFFECTS = ["detaches.1", "leaves-child.1", "floods.1", "floods-stdout.1", "takes-signals.1"]
MANY_GOOD = [f"good.{i}" for i in range(102)]
STATUS = {"exit.1": "ended", "closes-stderr.1": "ended", "hang.1": "hung", "hang-in-constructor.1": "hung",
          "DECODER_EXIT": "ended", "DECODER_CLOSES_STDERR": "ended", "DECODER_HANG": "hung",
          "ENCODER_EXIT_AT_ONCE": "ended"}  # fmt: skip
pytestmark = not_sanitized


def slow(*values):
    return pytest.param(*values, marks=pytest.mark.slow)



@pytest.fixture
def check(assay, installation):  # noqa: F811
    """The verdicts of these plugins, or of what was added before; no process may be left."""
    shutil.copy(APP / "assayer-list", installation.directory)

    def run(kind, *plugins, codecs=("GOOD_1",), jobs=2):
        installation.add(*plugins)
        chosen = ["--implementation", IMPL, "--codec", ",".join(f"CODEC_ID_{name}" for name in codecs)]
        arguments = ["--app", installation.directory, "--item-time", "3", "--jobs", str(jobs)]
        chosen += ["--plugin", "*"] if kind == "all" else []
        process = assay.start(kind, *arguments, *(chosen if kind != "plugins" else []))
        process.communicate(timeout=60)
        report = assay.report()
        assert report["complete"] and not processes_in(installation.directory), report["problem"]
        report["verdicts"] = {item["name"]: item["verdict"] for item in report["items"]}
        return report

    return run


@pytest.mark.parametrize("seed", [0, slow(1), slow(2)])
def test_the_whole_zoo_at_once(check, seed):
    plugins = GOOD + REPORTED + ENDING + SIDE_EFFECTS
    report = check("plugins", *random.Random(seed).sample(plugins, len(plugins)))
    expected = {name: "good" for name in GOOD + SIDE_EFFECTS} | {name: "failed" for name in REPORTED}
    expected |= {name: STATUS.get(name, "crashed") for name in ENDING} | {"OglManager": "missing"}
    assert report["verdicts"] == expected
    assert len(report["runs"]) == 2 * len(ENDING) + 1 + len(REPORTED)


@pytest.mark.parametrize("jobs", [slow(1), 2, slow(4)])
def test_the_codecs_of_the_zoo(check, installation, jobs):
    installation.add_fixture("BadCodecs")
    names = REPORTED_CODECS + ENDING_CODECS + [id.removeprefix("CODEC_ID_") for id in GOOD_CODECS]
    verdicts = check("codecs", codecs=random.Random(jobs).sample(names, len(names)), jobs=jobs)["verdicts"]
    for name in REPORTED_CODECS + ENDING_CODECS:
        test = f"{name.split('_')[0].capitalize()}.{IMPL}.CODEC_ID_{name}"
        assert verdicts[test] == ("failed" if name in REPORTED_CODECS else STATUS.get(name, "crashed")), name
    assert {verdicts[f"{coder}.{IMPL}.{id}"] for coder in ("Decoder", "Encoder") for id in GOOD_CODECS} == {"good"}


@pytest.mark.parametrize("victim", ["crashes-if-spoiled.1", "fails-if-spoiled.1"])
def test_company_is_found_among_a_hundred_innocents(check, victim):
    report = check("plugins", MANY_GOOD[0], "spoils.1", *MANY_GOOD[1:101], victim, MANY_GOOD[101])
    assert {name for name, verdict in report["verdicts"].items() if verdict == "unsteady"} == {victim}
    items = {item["name"]: item for item in report["items"]}
    assert items[victim]["company"] == ["spoils.1"] and items["spoils.1"]["spoils"] == [victim]
    end = subprocess.run(items[victim]["repro"], capture_output=True).returncode
    assert end == (-signal.SIGSEGV if victim.startswith("crashes") else 7)


@pytest.mark.parametrize("forger", ["forges", "forges-then-exits", slow("forges-then-hangs")])
@pytest.mark.parametrize("victim", ["good.1", "good.2", "good.4"])
def test_nobody_is_blamed_by_forged_records(check, forger, victim):
    report = check("plugins", "good.1", f"{forger}.{victim}", "good.2", "good.3", "good.4")
    assert {report["verdicts"][f"good.{i}"] for i in range(1, 5)} == {"good"}
    assert victim in " ".join(report["notes"])


def test_what_spoils_the_start_of_the_core_is_found(check, installation):
    installation.add_fixture("BadCodecs")
    report = check("codecs", "good.1", "segfault.1", "throws-in-list.1", "lists-comma.1", "good.2")
    culprits = {item["name"]: (item["verdict"], item["phase"]) for item in report["items"] if item["kind"] == "plugin"}
    assert culprits == {
        "segfault.1": ("crashed", "core start"),
        "throws-in-list.1": ("failed", "core start"),
        "lists-comma.1": ("failed", "core start"),
    }
    assert report["verdicts"][f"Encoder.{IMPL}.CODEC_ID_GOOD_1"] == "good"


def test_a_decoder_names_the_encoder_that_should_make_its_input(check, installation):
    installation.add_fixture("BadCodecs")
    items = check("codecs", codecs=["DECODER_AND_ENCODER_SEGFAULT", "DECODER_SEGFAULT"])["items"]
    found = {item["name"]: item["input"] for item in items if item["verdict"] == "crashed"}
    encoder = f"Encoder.{IMPL}.CODEC_ID_DECODER_AND_ENCODER_SEGFAULT"
    assert found == {encoder: "", encoder.replace("Encoder.", "Decoder."): encoder,
                     f"Decoder.{IMPL}.CODEC_ID_DECODER_SEGFAULT": ""}  # fmt: skip


@pytest.mark.slow
def test_both_parents_find_the_same(check, installation, tmp_path):
    installation.add_fixture("BadCodecs")
    codecs = ["GOOD_1", *REPORTED_CODECS, *ENDING_CODECS]
    report = check("all", "good.1", *REPORTED, *ENDING, "good.2", codecs=codecs)
    bad = {name for name, verdict in report["verdicts"].items() if verdict in ("failed", "crashed", "ended", "hung")}
    parent = Parent(installation.directory / "Assayer", tmp_path, seconds=3, implementations=IMPL)
    parent.check_all(",".join(f"CODEC_ID_{name}" for name in codecs))
    assert bad == {*parent.bad, *parent.broken}


def test_a_hang_delays_by_twice_its_time(check, installation):
    ends = [run["end"] for run in check("plugins", "good.1", "hang.1", "good.2")["runs"]]
    assert ends.count({"deadline": 3.0}) == 2, ends
