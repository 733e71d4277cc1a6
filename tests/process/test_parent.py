"""The parent's loop over installations full of modules and codecs that end the process."""

import pytest
from conftest import not_sanitized
from parent import Parent, parse_records

GOOD = [f"good.{i}" for i in range(20)]
REPORTED = ["throws-int.1", "refuses.1", "undefined-symbol", "wrong-version.1"]
ENDING = ["crash-in-constructor.1", "exits.1", "hang-in-init.1", "crash-in-init.1", "hang-in-constructor.1", "exits.2"]
CODEC_COUNT = 30
IMPL = "FFMPEG_IMPL"


def mix(*lists):
    """The elements of all lists, spread evenly."""
    placed = [((i + 0.5) / len(names), name) for names in lists for i, name in enumerate(names)]
    return [name for _, name in sorted(placed)]


@pytest.fixture
def parent(installation, tmp_path):
    return Parent(installation.directory / "Assayer", tmp_path, seconds=2, implementations=IMPL)


@not_sanitized
@pytest.mark.parametrize("turned", [False, True])
def test_plugins_converge(installation, parent, turned):
    modules = mix(GOOD, REPORTED, ENDING)
    installation.add(*(reversed(modules) if turned else modules))
    parent.check_plugins()
    assert sorted(parent.bad) == sorted(REPORTED + ENDING)
    assert len(parent.passes) == len(ENDING) + 1


@not_sanitized
@pytest.mark.parametrize("check, threads", [("codecs", False), ("codecs", True), ("all", False), ("all", True)])
def test_codecs_converge(installation, parent, check, threads):
    installation.add_fixture("BadCodecs")
    ending = ["exits.1", "crash-in-init.1"] if check == "all" else []
    installation.add(*mix(GOOD[:4], ending))
    faults = ["DECODER_CRASH", "DECODER_HANG", "DECODER_THROWS_INT", "ENCODER_CRASH", "ENCODER_READ_THROWS"]
    good = [f"CODEC_ID_GOOD_{i}" for i in range(CODEC_COUNT)]
    codecs = ",".join(mix(good, [f"CODEC_ID_{fault}" for fault in faults]))
    if check == "all":
        parent.check_all(codecs, threads)
    else:
        parent.check_codecs(codecs, threads)
    expected = {f"{fault.split('_')[0].capitalize()}.{IMPL}.CODEC_ID_{fault}" for fault in faults}
    assert set(parent.broken) == expected
    assert sorted(parent.bad) == sorted(ending)
    assert len([test for test in parent.passed if "GOOD" in test]) == 2 * CODEC_COUNT
    if not threads:
        assert len(parent.passes) == len(ending) + 3 + 1


@not_sanitized
def test_core_start_that_ends_the_process_costs_one_module(installation, parent):
    installation.add_fixture("BadCodecs")
    installation.add("good.1", "crash-in-init.1", "good.2")
    parent.check_codecs("CODEC_ID_GOOD_1")
    assert parent.bad == ["crash-in-init.1"] and parent.broken == [] and len(parent.passed) == 2


def test_records_survive_cuts_and_noise():
    text = (
        "noiseE1 1 a.cpp:1] [ERROR]cut at the limi\nE1 1 a.cpp:1] [CODECS]a.b.c[/CODECS]\nnoise"
        "E1 1 a.cpp:1] [ERROR]two\nlines [/CODECS]\n[/ERROR]\nI1 1 a.cpp:1] Using FakeStream\n"
    )
    assert parse_records(text) == [
        ("ERROR", "cut at the limi"),
        ("CODECS", "a.b.c"),
        ("ERROR", "two\nlines [/CODECS]\n"),
    ]
