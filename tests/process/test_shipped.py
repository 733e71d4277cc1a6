"""The shipped codec modules through the real program."""

import os
import re
import subprocess
from pathlib import Path

import pytest
from conftest import APP, FIXTURES

FFMPEG, NVDEC, FRAMEWORK = "FFMPEG_IMPL", "NVDEC_IMPL", "MEDIA_FOUNDATION_IMPL"
COMMON = ["AAC", "H264", "H265", "AC3", "DVVIDEO", "H263", "OPUS", "VP9", "FLAC", "MP3"]
OF_FRAMEWORK = "AAC MP3 OPUS VORBIS FLAC AC3 H264 H265 VP8 VP9 AV1 MJPEG THEORA MPEG2VIDEO DVVIDEO".split()
NOT_ENCODED_BY_FRAMEWORK = {"AC3", "MPEG2VIDEO", "DVVIDEO"}
SAMPLES = {path.stem for path in (APP / "resources" / "codecSamples").iterdir()}
has_framework = pytest.mark.skipif(
    not (APP / "MediaFoundationCodecs.so").exists(), reason="built without it"
)


def ids(names):
    return ",".join(f"CODEC_ID_{name}" for name in names)


def named(kind, implementation, names):
    return {f"{kind}.{implementation}.CODEC_ID_{name}" for name in names}


@pytest.fixture(autouse=True)
def registry(tmp_path_factory, monkeypatch):
    """Made once, because that takes seconds."""
    own = tmp_path_factory.getbasetemp() / "registry"
    monkeypatch.setenv("GST_REGISTRY", os.environ.get("GST_REGISTRY", str(own)))


def test_every_codec_of_libavcodec(shipped):
    lines = subprocess.run([FIXTURES / "ListCodecs"], capture_output=True, text=True, check=True).stdout.split("\n")
    offered = {kind: {line.split()[1] for line in lines if line.startswith(kind)} for kind in ("decoder", "encoder")}
    every = ",".join(sorted(offered["decoder"] | offered["encoder"]))
    result = shipped.run("codecs", "600", FFMPEG, every, *"-----", "1", limit=610)
    assert result.code == 8, result
    without_input = {f"Decoder.{FFMPEG}.{codec}" for codec in offered["decoder"] - offered["encoder"] - SAMPLES}
    assert set(result.of("CODECS")) == without_input
    assert set(result.of("ERROR")) == {f"{name.split('.', 2)[2]} stream not found" for name in without_input}
    assert len(result.of("TEST_CODEC")) == len(offered["decoder"]) + len(offered["encoder"])
    foreign = [line for line in result.err.splitlines()[1:] if not re.match(r"[IWE]\d{8} ", line)]
    assert foreign == [] and result.out == "", foreign


def test_common_codecs_and_their_module_disabled(shipped):
    result = shipped.run("all", "60", FFMPEG, ids(COMMON))
    assert result.code == 0 and len(result.of("TEST_CODEC")) == 2 * len(COMMON), result
    for line in ("Using test file: CODEC_ID_H264.mp4", "Using FakeStream"):
        assert re.search(rf"^I\d{{8}} .* CodecChecker\.cpp:\d+\] {line}$", result.err, re.MULTILINE), result
    disabled = shipped.run("all", "60", FFMPEG, ids(COMMON), "FfmpegCodecs")
    assert disabled.code == 0 and disabled.of("TEST_CODEC") == [], disabled
    assert disabled.of("TESTED_CODECS") == ["true"]


def test_a_sample_of_another_codec_is_no_input(installation):
    installation.add_shipped("CodecFactory", "FfmpegCodecs")
    installation.add_shipped("ParserFactory", "FfmpegParsers")
    samples = installation.directory / "resources" / "codecSamples"
    samples.mkdir(parents=True)
    [sample] = (APP / "resources" / "codecSamples").glob("CODEC_ID_H264.*")
    (samples / f"CODEC_ID_VP9{sample.suffix}").symlink_to(sample)
    result = installation.run("codecs", "60", FFMPEG, ids(["VP9"]))
    assert result.of("ERROR") == ["CODEC_ID_VP9 stream not found"], result


def test_a_last_failed_test_is_skipped_only_in_its_implementation(shipped):
    last = f"Decoder.{FFMPEG}.CODEC_ID_H264"
    result = shipped.run("codecs", "60", f"{FFMPEG},{NVDEC}", ids(["H264"]), *"----", last)
    tested = {f"{kind}.{impl}.CODEC_ID_H264" for kind in ("Decoder", "Encoder") for impl in (FFMPEG, NVDEC)}
    assert set(result.of("TEST_CODEC")) == tested - {last}, result


@pytest.mark.skipif(Path("/dev/nvidia0").exists(), reason="there is a GPU")
def test_without_a_gpu_its_codecs_are_broken(shipped):
    result = shipped.run("codecs", "60", NVDEC, ids(["H264"]))
    assert result.code == 8, result
    assert set(result.of("CODECS")) == {f"{kind}.{NVDEC}.CODEC_ID_H264" for kind in ("Decoder", "Encoder")}
    assert all("Cannot load lib" in text for text in result.of("ERROR")), result


@has_framework
@pytest.mark.parametrize("threads", ["-", "1"])
def test_two_implementations_in_one_run(shipped, threads):
    result = shipped.run("codecs", "60", f"{FFMPEG},{FRAMEWORK}", ids(OF_FRAMEWORK), *"-----", threads)
    assert result.code == 0, result
    encoded = set(OF_FRAMEWORK) - NOT_ENCODED_BY_FRAMEWORK
    assert set(result.of("TEST_CODEC")) == (
        named("Decoder", FFMPEG, OF_FRAMEWORK)
        | named("Decoder", FRAMEWORK, OF_FRAMEWORK)
        | named("Encoder", FFMPEG, OF_FRAMEWORK)
        | named("Encoder", FRAMEWORK, encoded)
    )


@has_framework
def test_framework_without_the_other_implementation(shipped):
    result = shipped.run("all", "60", FRAMEWORK, ids(OF_FRAMEWORK), "FfmpegCodecs")
    assert result.code == 0, result
    encoded = set(OF_FRAMEWORK) - NOT_ENCODED_BY_FRAMEWORK
    assert set(result.of("TEST_CODEC")) == (
        named("Decoder", FRAMEWORK, OF_FRAMEWORK) | named("Encoder", FRAMEWORK, encoded)
    )
    assert "Using FakeStream" not in result.err.split("Encoder.")[0], result


def test_material_that_is_added(installation):
    """Some of it is unusable, and one file serves another codec whose id begins the file's name."""
    installation.add_shipped("CodecFactory", "FfmpegCodecs")
    installation.add_shipped("ParserFactory", "FfmpegParsers")
    samples = installation.directory / "resources" / "codecSamples"
    samples.mkdir(parents=True)
    good = {path.stem: path.read_bytes() for path in (APP / "resources" / "codecSamples").iterdir()}
    (samples / "my CODEC_ID_ANSI.ans").write_text("Assayer")
    (samples / "CODEC_ID_VP9").write_bytes(good["CODEC_ID_VP9"][:-1000])
    (samples / "CODEC_ID_VP6F.flv").write_bytes(good["CODEC_ID_VP8"])
    (samples / "CODEC_ID_VC1.empty").touch()
    (samples / "CODEC_ID_COOK").mkdir()
    (samples / "CODEC_ID_WMV3.txt").write_text("no media")
    result = installation.run("codecs", "60", FFMPEG, ids("ANSI VP9 VP6 VC1 COOK WMV3".split()), "-", "-", "-", "-", ",Encoder.X.Y")
    assert result.code == 8, result
    assert set(result.of("CODECS")) == named("Decoder", FFMPEG, "VP6 VC1 COOK WMV3".split())
    errors = result.of("ERROR")
    assert "CODEC_ID_VP6 stream not found" in errors and len(errors) == 4, result
    for name in ("CODEC_ID_VC1.empty", "CODEC_ID_COOK", "CODEC_ID_WMV3.txt"):
        reason = f"File {samples / name}: opening failed: "
        assert any(reason in error for error in errors), (name, errors)
    for path in samples.iterdir():
        assert f"Using test file: {path.name}\n" in result.err, path


def test_the_example_of_the_documentation_works(installation):
    installation.add_fixture("RawCodec")
    result = installation.run("all", "60", "EXAMPLE_IMPL", "CODEC_ID_RAW")
    assert result.code == 0 and result.of("TEST_CODEC") == ["Encoder.EXAMPLE_IMPL.CODEC_ID_RAW"], result
