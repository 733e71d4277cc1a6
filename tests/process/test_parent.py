"""The parent's loop on installations full of modules and codecs that end the process."""

import random

import pytest
from conftest import not_sanitized
from parent import Parent, Run, parse_records

IMPL = "FFMPEG_IMPL"
GOOD = [f"good.{i}" for i in range(100)]
REPORTED = ["throws-int.1", "refuses.1", "undefined-symbol"]
ENDING = ["segfault.1", "abort-in-constructor.1", "stack-overflow.1", "exit.1", "closes-stderr.1", "hang.1",
          "hang-in-constructor.1"]  # fmt: skip
GOOD_CODECS = [f"CODEC_ID_GOOD_{i}" for i in range(200)]
REPORTED_CODECS = ["DECODER_THROWS_INT", "DECODER_GIVES_NOTHING", "ENCODER_THROWS"]
ENDING_CODECS = ["DECODER_SEGFAULT", "DECODER_ABORT", "DECODER_EXIT", "DECODER_CLOSES_STDERR", "DECODER_HANG",
                 "ENCODER_STACK_OVERFLOW", "ENCODER_EXIT_AT_ONCE"]  # fmt: skip


@pytest.fixture
def parent(installation, tmp_path):
    return Parent(installation.directory / "Assayer", tmp_path, seconds=3, implementations=IMPL)


@not_sanitized
def test_the_whole_zoo_at_once(installation, parent):
    def mix(*lists):
        return random.Random(1).sample(sum(lists, []), sum(map(len, lists)))

    installation.add_fixture("BadCodecs")
    installation.add(*mix(GOOD, REPORTED, ENDING))
    faults = REPORTED_CODECS + ENDING_CODECS
    parent.check_all(",".join(mix(GOOD_CODECS, [f"CODEC_ID_{fault}" for fault in faults])))
    assert sorted(parent.bad) == sorted(REPORTED + ENDING)
    broken = [f"{fault.split('_')[0].capitalize()}.{IMPL}.CODEC_ID_{fault}" for fault in faults]
    assert sorted(parent.broken) == sorted(broken)
    good = [f"{kind}.{IMPL}.{codec}" for kind in ("Decoder", "Encoder") for codec in GOOD_CODECS]
    assert set(good) <= set(parent.passed)
    assert parent.unsteady == []
    rounds = 2
    assert len(parent.runs) == 2 * len(ENDING) + len(REPORTED) + rounds + 2 * len(ENDING_CODECS) + 1


@not_sanitized
def test_core_start_that_ends_the_process_costs_the_bad_modules_alone(installation, parent):
    installation.add_fixture("BadCodecs")
    installation.add("good.1", "segfault.1", "good.2", "exit.1")
    parent.check_codecs("CODEC_ID_GOOD_1")
    assert parent.bad == ["segfault.1", "exit.1"] and parent.broken == [] and len(parent.passed) == 2


@not_sanitized
def test_who_is_bad_in_company_only_is_met_once(installation, parent):
    installation.add("spoils.1", "crashes-if-spoiled.1", "good.1", "spoils.1", "crashes-if-spoiled.1")
    parent.check_plugins()
    assert (parent.bad, parent.unsteady, len(parent.runs)) == ([], ["crashes-if-spoiled.1"], 4)


@not_sanitized
def test_a_forged_end_hides_nobody(installation, parent):
    installation.add("good.1", "forges-end.1", "exit.1", "forges-all.1", "segfault.1", "good.2")
    parent.check_plugins()
    assert (parent.bad, parent.unsteady) == (["forges-end.1", "exit.1", "forges-all.1", "segfault.1"], [])


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


def test_a_module_cannot_pose_as_a_failure_of_the_run():
    for status, tags, itself in [
        (4, "ERROR", True),
        (4, "WARNING ERROR", True),
        (5, "LOAD_PLUGIN_NAME LOADED_PLUGINS ERROR", True),
        (5, "LOAD_PLUGIN_NAME PLUGINS ERROR", False),
        (5, "TEST_CODEC ERROR", False),
        (4, "LOAD_PLUGIN_NAME", False),
        (3, "ERROR", True),
        (3, "", False),
        (3, "LOAD_PLUGIN_NAME ERROR", False),
        (0, "ERROR", False),
    ]:
        text = "".join(f"] [{tag}]x[/{tag}]\n" for tag in tags.split())
        assert Run(status, text).failed_itself == itself, (status, tags)
