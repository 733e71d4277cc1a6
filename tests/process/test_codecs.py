"""The codec phase of the real program, on coders that misbehave on purpose."""

import re

import pytest

TESTED = ("TESTED_CODECS", "true")
IMPL = "FFMPEG_IMPL"
OK = ("CODEC_ID_GOOD_0", "CODEC_ID_GOOD_1")


def test_id(kind, codec):
    return f"{kind}.{IMPL}.{codec}"


test_id.__test__ = False


@pytest.fixture
def bad_codecs(installation):
    installation.add_fixture("BadCodecs")
    return installation


def check(installation, *codecs, rest=("-",) * 6, kind="codecs", limit="60"):
    return installation.run(kind, limit, IMPL, ",".join(codecs), *rest)


# Text in the ERROR record of a bad decoder or encoder.
FAILURES = {
    "DECODER_GIVES_NOTHING": ("Decoder", "Cannot create decoder : Decoder.FFMPEG_IMPL.CODEC_ID_DECODER_GIVES_NOTHING"),
    "DECODER_THROWS_STD": ("Decoder", "std reason"),
    "DECODER_THROWS_TARNEX": ("Decoder", "tarnex reason"),
    "DECODER_THROWS_INT": ("Decoder", "int"),
    "DECODER_THROWS": ("Decoder", "reason"),
    "ENCODER_GIVES_NOTHING": ("Encoder", "Can create encoder: Encoder.FFMPEG_IMPL.CODEC_ID_ENCODER_GIVES_NOTHING"),
    "ENCODER_THROWS_INT": ("Encoder", "int"),
    "ENCODER_THROWS": ("Encoder", "reason"),
}


@pytest.mark.parametrize("threads", ["-", "1"])
def test_findings(bad_codecs, threads):
    codecs = [f"CODEC_ID_{name}" for name in FAILURES] + [*OK, OK[0], "CODEC_ID_DECODER_READS_NOTHING", "NOT_OFFERED"]
    result = check(bad_codecs, *codecs, rest=("-",) * 5 + (threads,))
    assert result.code == 8, result
    findings = {test_id(kind, f"CODEC_ID_{name}"): text for name, (kind, text) in FAILURES.items()}
    assert sorted(result.of("CODECS")) == sorted(findings)
    errors = result.of("ERROR")
    for text in findings.values():
        assert any(text in error for error in errors), (text, errors)
    decoders = [c for c in codecs if "ENCODER" not in c and c != "NOT_OFFERED"]
    encoders = [c for c in codecs if c != "NOT_OFFERED"]
    expected = {test_id("Decoder", c) for c in decoders} | {test_id("Encoder", c) for c in encoders}
    tested = result.of("TEST_CODEC")
    assert sorted(tested) == sorted(expected)  # each once, although one id was asked for twice
    assert [t.split(".")[0] for t in tested] == ["Decoder"] * len(set(decoders)) + ["Encoder"] * len(set(encoders))
    assert result.records()[-1] == TESTED
    assert "coders left: 0, each on one thread: 1\n" in result.out, result
    if threads == "-":
        records = result.records()
        for finding in findings:
            at = records.index(("TEST_CODEC", finding))
            assert records[at + 1][0] == "ERROR" and records[at + 2] == ("CODECS", finding), result


def test_known_broken_and_last_failed(bad_codecs):
    good, other = OK
    known = bad_codecs.file("known", f"Codecs.Encoder.{IMPL}: {good}, NOBODY\nCodecs.Decoder.X: {good}\n")
    result = check(bad_codecs, *OK, rest=("-", "-", known, "-", f"{test_id('Encoder', other)},,"))
    message = f"{test_id('Encoder', good)}: \nTest Error\n"
    assert result.code == 8 and result.records() == [
        ("TEST_CODEC", test_id("Decoder", good)),
        ("TEST_CODEC", test_id("Decoder", other)),
        ("ERROR", message),
        ("CODECS", test_id("Encoder", good)),
        TESTED,
    ], result


@pytest.mark.parametrize(
    "last, rounds",
    [
        ("Encoder.I.X", ["Encoder"]),
        ("Encoder.FFMPEG_IMPL.CODEC_ID_GOOD_0, Encoder.I.X", []),
        ("Encoder.I.X,Decoder.I.Y.Z", ["Decoder", "Encoder"]),
        ("Decoder.FFMPEG_IMPL.CODEC_ID_GOOD_0", ["Encoder"]),
    ],
)
def test_rounds_of_a_resumed_run(bad_codecs, last, rounds):
    result = check(bad_codecs, OK[0], rest=("-", "-", "-", "-", last))
    assert result.code == 0, result
    assert [t.split(".")[0] for t in result.of("TEST_CODEC")] == rounds


def test_malformed_test_ids_are_reported(bad_codecs):
    result = check(bad_codecs, OK[0], rest=("-", "-", "-", "-", "Encoder.X"))
    assert result.code == 4 and '"Encoder.X"' in result.of("ERROR")[0], result
    bad = bad_codecs.file("bad", "Codecs.Encode.X: Y\n")
    result = check(bad_codecs, OK[0], rest=("-", "-", bad))
    assert result.code == 4 and bad in result.of("ERROR")[0], result


def test_module_that_cannot_list_its_codecs_is_reported(bad_codecs):
    bad_codecs.add("throws-in-list")
    result = bad_codecs.run("codecs", "60", f"{IMPL},NONE_IMPL", OK[0])
    assert result.code == 4 and re.search("NONE_IMPL.*list reason", result.of("ERROR")[-1], re.DOTALL), result
    assert check(bad_codecs, OK[0]).code == 0  # it isn't asked


@pytest.mark.parametrize(
    "lister, shown",
    [("lists-comma", "A,B"), ("lists-blank", " AB"), ("lists-tab", "A B"), ("lists-odd-bytes", "A\ufffd"), ("lists-empty", "")],
)
def test_module_that_lists_an_unusable_codec_id_is_reported(bad_codecs, lister, shown):
    bad_codecs.add("lists-points", lister)
    result = bad_codecs.run("codecs", "60", f"{IMPL},NONE_IMPL", OK[0])
    module = f"Plugin {lister}, module {bad_codecs.directory}/{lister}.so: can't list the codecs of NONE_IMPL"
    assert result.code == 4 and f'{module}: unusable codec id "{shown}"' in result.of("ERROR")[-1], result


def test_disabled_and_broken_plugins_offer_nothing(bad_codecs):
    assert len(check(bad_codecs, OK[0], kind="all").of("TEST_CODEC")) == 2
    known = bad_codecs.file("known", "Plugins.A: BadCodecs\n")
    disabled = check(bad_codecs, *OK, rest=("BadCodecs , nobody",), kind="all")
    reported = check(bad_codecs, *OK, rest=("-", known), kind="all")
    bad_codecs.enlist("MuxerFactory", "BadCodecs")  # fails: the module has no muxer
    found = check(bad_codecs, *OK, kind="all")
    assert [result.code for result in (disabled, reported, found)] == [0, 7, 7]
    for result in (disabled, reported, found):
        assert result.of("TEST_CODEC") == [] and result.records()[-1] == TESTED, result


def test_broken_plugins_and_codecs_together(bad_codecs):
    bad_codecs.add("throws-std", "good.1")
    result = check(bad_codecs, "CODEC_ID_DECODER_THROWS_STD", OK[0], kind="all")
    assert result.code == 9, result
    assert result.of("PLUGINS") == ["throws-std"]
    assert result.of("CODECS") == [test_id("Decoder", "CODEC_ID_DECODER_THROWS_STD")]
    assert "shut down" not in result.out, result
