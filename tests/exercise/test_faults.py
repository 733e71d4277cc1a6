"""What the helper says of each fault, in each interface that can have it."""

import signal

import pytest
from conftest import DATA, IDS, MANIFEST, SANITIZED

SOUND = ("LADSPA", "LV2", "CLAP", "VST3")
ALL = tuple(IDS)

# The call that a host makes at each place of a plugin's life: what the last step begins with.
CALLS = {
    "LADSPA": {"create": "instantiate", "activate": "activate", "process": "run, block 1 of 1024",
               "deactivate": "deactivate", "destroy": "cleanup"},
    "CLAP": {"create": "create_plugin", "activate": "activate", "process": "process, block 1 of 1024",
             "deactivate": "deactivate", "destroy": "destroy"},
    "VST3": {"create": "createInstance", "activate": "setActive, true",
             "process": "process, block 1 of 1024", "deactivate": "setActive, false",
             "destroy": "release"},
    "Vamp": {"create": "instantiate", "activate": "initialise", "process": "process, block 1 of 1000",
             "deactivate": "getRemainingFeatures", "destroy": "cleanup"},
    "frei0r": {"create": "f0r_construct", "process": "f0r_update, picture 1 of 320x240",
               "destroy": "f0r_destruct"},
}
CALLS["LV2"] = CALLS["LADSPA"]
PLACES = [(interface, place) for interface in ALL for place in CALLS[interface]]
# vamp-hostsdk calls it in a destructor, which ends the process.
CAUGHT = [place for place in PLACES if place != ("Vamp", "destroy")]


@pytest.mark.skipif(bool(SANITIZED), reason="a sanitizer turns signals into exits")
@pytest.mark.parametrize("kind, end", [("crash", -signal.SIGSEGV), ("hang", "hung"), ("exit", 17)])
@pytest.mark.parametrize("interface, place", PLACES)
def test_the_last_step_names_the_call_that_ends_the_run(helper, interface, place, kind, end):
    result = helper.exercise(interface, f"{kind} {place}")
    assert result.code == end, result
    assert result.of("STEP")[-1].startswith(CALLS[interface][place]), result
    assert not result.of("EXERCISED")


@pytest.mark.parametrize("interface, place", CAUGHT)
def test_an_exception_fails_and_the_next_exercise_follows(helper, interface, place):
    module = helper.module(interface)
    exercise = {"module": module["name"], "id": IDS[interface]}
    result = helper.request("run", f"throw {place}", modules=[module], exercises=[exercise] * 2)
    assert result.code == 0, result
    assert len(result.of("EXERCISES")) == 2, result
    for error in result.of("ERROR"):
        assert "exception leaves the plugin" in error and "reason" in error
        assert CALLS[interface][place] in error
    assert result.of("EXERCISED") == ["true"]


def failed(interfaces, fault, depth, text):
    return [(interface, fault, depth, text) for interface in interfaces]


FAILED = [
    *failed(ALL, "null", "exercise", "gives nothing"),
    *failed(SOUND, "nan in block 2", "exercise", "output 1 holds NaN from frame 0 on: *block 2 of 1 frames, silence"),
    *failed(SOUND, "nan again", "exercise", "activated again"),
    *failed(SOUND, "nan at maximum for good", "stress", "still so with default values, activated again"),
    *failed(ALL, "disturbing", "stress", "two instances disturb each other"),
    *failed(("LV2",), "forgetful", "stress", "state doesn't come back"),
    *failed(("CLAP", "VST3"), "forgetful", "stress", "state doesn't come back*gain was"),
    *failed((*SOUND, "Vamp"), "beyond", "stress", "writes beyond the end of*unmapped page after"),
    *failed(("Vamp",), "forgetful", "stress", "other features after reset"),
    *failed(("CLAP", "VST3"), "error", "exercise", "process returns"),
    *failed(("Vamp",), "refuses", "exercise", "refuses what it prefers"),
]


@pytest.mark.parametrize("interface, fault, depth, text", FAILED)
def test_a_fault_that_ends_nothing_is_told_with_its_call(helper, interface, fault, depth, text):
    result = helper.exercise(interface, fault, depth)
    name = f"{helper.module(interface)['name']}/{IDS[interface]}"
    assert result.code == 0, result
    assert result.of("EXERCISES") == [name], result
    assert all(part in result.of("ERROR")[0] for part in text.split("*")), result
    assert result.records[-1] == ("EXERCISED", "true")


@pytest.mark.skipif(bool(SANITIZED), reason="a sanitizer turns signals into exits")
def test_a_write_beyond_a_picture_hits_the_unmapped_page(helper):
    assert helper.exercise("frei0r", "beyond").of("EXERCISED"), "found at a lower depth"
    result = helper.exercise("frei0r", "beyond", "stress")
    assert result.code == -signal.SIGSEGV, result
    assert "unmapped page after" in result.of("STEP")[-1], result


GOOD = [(interface, fault, depth) for interface in ALL
        for fault in ("", "untouched") for depth in ("load", "exercise", "stress")]


@pytest.mark.parametrize("interface, fault, depth", GOOD)
def test_a_good_plugin_is_good(helper, interface, fault, depth):
    result = helper.exercise(interface, fault, depth)
    assert result.code == 0, result
    assert result.of("TITLE")[0].startswith("Fixture") and result.records[0][0] == "EXERCISE"
    assert result.records[-1] == ("EXERCISED", "true")
    assert not result.of("ERROR"), result
    assert fault or not result.of("REMARK"), result
    assert bool(result.of("STEP")[3:]) == (depth != "load")


REMARKS = [
    *[(interface, "nan at maximum", "stress", "good with default values") for interface in SOUND],
    *[(interface, "denormal", "exercise", "denormal numbers") for interface in SOUND],
    ("CLAP", "wordy", "stress", "comes back as"),
]
if not SANITIZED:  # it has an allocator of its own
    REMARKS += [(interface, "allocating", "exercise", "allocates") for interface in SOUND]


@pytest.mark.parametrize("interface, fault, depth, text", REMARKS)
def test_what_is_no_fault_is_a_remark(helper, interface, fault, depth, text):
    result = helper.exercise(interface, fault, depth)
    assert not result.of("ERROR"), result
    assert any(text in remark for remark in result.of("REMARK")), result


LV2_DATA = [
    ("urid#map", "urid#map> , <urn:nobody", "UNAVAILABLE", "requires the feature urn:nobody"),
    ("a lv2:InputPort , lv2:ControlPort", "a lv2:InputPort , <urn:odd>", "UNAVAILABLE", "type that isn't offered"),
    ("lv2:index 2", "lv2:index 7", "EXERCISES", "the data"),
]


@pytest.mark.parametrize("old, new, tag, text", LV2_DATA)
def test_lv2_data_that_ask_too_much_or_are_wrong(helper, old, new, tag, text):
    helper.bundle(DATA.replace(old, new))
    result = helper.exercise("LV2")
    assert result.of(tag) == ["FixtureLv2/urn:assayer:gain"], result
    assert text in result.of("ERROR")[0]


def test_lv2_data_with_a_uri_that_the_binary_lacks(helper):
    helper.bundle(*(text.replace("urn:assayer:gain", "urn:assayer:other") for text in (DATA, MANIFEST)))
    module = helper.module("LV2")
    exercise = {"module": module["name"], "id": "urn:assayer:other"}
    result = helper.request("run", modules=[module], exercises=[exercise])
    assert "which the binary doesn't have" in result.of("ERROR")[0], result
