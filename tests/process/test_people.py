"""What people read and type: texts, names, screens, shells."""

import fcntl
import json
import os
import pty
import shutil
import struct
import subprocess
import termios

import pytest
from conftest import not_sanitized
from test_assay import app, assay, home  # noqa: F401
from test_documents import ROOT

RED = "\x1b[31m"


@pytest.fixture
def report(assay, app, home):  # noqa: F811
    """The report of a check with one of each kind."""
    assay.run("all", *app, "--plugin", "*", "--codec", "CODEC_ID_GOOD_1,CODEC_ID_DECODER_SEGFAULT", status=1)
    return home / ".local/state/assayer/report.json"


def see(assay, *arguments, rows=24, columns=80, **environment):  # noqa: F811
    """What a terminal of that size gets, and the status."""
    pid, terminal = pty.fork()
    if pid == 0:
        fcntl.ioctl(1, termios.TIOCSWINSZ, struct.pack("HHHH", rows, columns, 0, 0))
        os.execve(assay.folder / "assay", ["assay", *map(str, arguments)], assay.environment | environment)
    text = b""
    while True:
        try:
            text += os.read(terminal, 65536)
        except OSError:
            break
    os.close(terminal)
    return text.decode(), os.waitstatus_to_exitcode(os.waitpid(pid, 0)[1])


@pytest.mark.parametrize("arguments, status, expected", [
    (["lst"], 2, 'no command "lst"; did you mean list?'),
    (["--vrsion"], 2, "did you mean --version?"),
    (["plugins", "--plugn=x"], 2, 'no option "--plugn"; did you mean --plugin?'),
    (["plugins", "--jobs", "none"], 2, "assay help plugins"),
    (["help"], 0, "compare"),
    (["help", "collect"], 0, "--into"),
    (["help", "rport"], 2, "did you mean report?"),
    (["show"], 3, "no report yet"),
    (["report", "none.json"], 3, "none.json: No such file or directory"),
])  # fmt: skip
def test_mistakes_get_the_nearest(assay, arguments, status, expected):  # noqa: F811
    assert expected in assay.run(*arguments, status=status)


@not_sanitized
def test_one_item_in_words(assay, report):  # noqa: F811
    for names, expected, missing in [
        (["segfault.1"], ["SIGSEGV", "Show it again", "Assayer plugins"], ["good.1"]),
        (["SEGF*"], ["SIGSEGV"], ["good.1"]),
        (["ffmpeg", "good_1", "decoder"], ["good", "Decoder.FFMPEG_IMPL.CODEC_ID_GOOD_1"], ["SIGSEGV"]),
        (["good_1"], ["FFmpeg GOOD_1 decoder", "FFmpeg GOOD_1 encoder"], ["SIGSEGV"]),
        ([], ["crashed", "throws-odd-bytes.1", "assay show NAME"], ["Show it again"]),
    ]:
        text = assay.run("show", *names, status=1)
        assert all(word in text for word in expected) and not any(word in text for word in missing), text
    assert "did you mean segfault.1?" in assay.run("show", "segfalt.1", status=2)


@not_sanitized
def test_a_screen_says_each_thing_once(assay, app, installation, report):  # noqa: F811
    text, status = see(assay, "show", columns=60)
    assert status == 1 and max(map(len, text.replace(RED, "").replace("\x1b[0m", "").splitlines())) <= 60
    assert f"{RED}crashed\x1b[0m   segfault.1" in text and text.count("segfault.1") == 1
    assert "\x1b" not in see(assay, "show", NO_COLOR="1")[0] + see(assay, "show", TERM="dumb")[0]
    installation.add(*[f"segfault.{i}" for i in range(2, 40)])
    text = see(assay, "plugins", *app)[0]
    screen = text.rpartition("\x1b[J")[2]
    assert len(screen.splitlines()) <= 24 and " more" in screen and screen.count("segfault.3 ") == 1
    plain = assay.run("plugins", *app, status=1)
    assert plain.count("segfault.3 ") == 1 and "\x1b" not in plain


@not_sanitized
def test_reports_say_what_they_hold_by_their_status(assay, report, home):  # noqa: F811
    document = json.loads(report.read_text())
    good = home / "good.json"
    document["items"] = [item for item in document["items"] if item["verdict"] == "good"]
    good.write_text(json.dumps(document))
    open_ = home / "open.json"
    open_.write_text(json.dumps(document | {"complete": False}))
    for arguments, status in [
        (["report", good], 0), (["report", report], 1), (["report", open_, report], 3), (["show", "--report", good], 0),
        (["show", "--report", open_, "good.1"], 3), (["report", open_, "--html", home / "page"], 0),
        (["report", open_, "--junit", home / "xml"], 0),
    ]:  # fmt: skip
        assay.run(*arguments, status=status)
    command = [assay.folder / "assay", "report", "-", "--html", "-"]
    piped = subprocess.run(command, input=report.read_bytes(), stdout=subprocess.PIPE, env=assay.environment)
    assert piped.returncode == 0 and piped.stdout.startswith(b"<!doctype html>") and b"</html>" in piped.stdout


def test_output_that_goes_nowhere_is_told(assay, app, home):  # noqa: F811
    report = home / ".local/state/assayer/report.json"
    quoted = " ".join(map(str, app))
    for command, expected in [("list --app /nothing 2>/dev/full", 3), (f"list {quoted} >/dev/full", 3), ("help >&-", 3),
                              (f"plugins {quoted} --plugin good.1 >/dev/full", 3),
                              (f"plugins {quoted} --plugin good.1 >&- 2>&-", 3)]:  # fmt: skip
        report.unlink(missing_ok=True)
        shell = subprocess.run(["sh", "-c", f"{assay.folder}/assay {command}"], env=assay.environment, timeout=60)
        assert shell.returncode == expected, command
        assert report.exists() == command.startswith("plugins"), command


def test_texts_of_modules_are_printable_everywhere(assay, home, tmp_path):  # noqa: F811
    folder = tmp_path / "mod\x1b[2Jules"
    folder.mkdir()
    (folder / "od\x1b[31md.so").write_text("none")
    text = assay.run("collect", folder, "--into", home / "in\x1b[2Jto")
    assert "left out" in text and "\x1b" not in text


@not_sanitized
@pytest.mark.skipif(not shutil.which("gdb"), reason="there is no gdb")
def test_a_trace_shows_where(assay, app, installation):  # noqa: F811
    installation.add("hang.1")
    assay.run("plugins", *app, status=1)
    crashed = assay.run("show", "segfault.1", "--trace", status=1)
    assert "SIGSEGV" in crashed and "#0 " in crashed
    assert "#0 " in assay.run("show", "hang.1", "--trace", status=1)
    assert "nothing to trace" in assay.run("show", "throws-odd-bytes.1", "--trace", status=3)


SHELLS = {
    "bash": ("source {file}; COMP_WORDS=(assay {words}); COMP_CWORD=$((${{#COMP_WORDS[@]}} - 1)); _assay; "
             'printf "%s\\n" "${{COMPREPLY[@]}}"'),
    "zsh": ('compadd() {{ print -rl -- $found }}; _files() {{ }}; words=(assay {words}); CURRENT=$#words; source {file}'),
    "fish": "source {file}; complete --do-complete 'assay {words}'",
}  # fmt: skip
FILES = {"bash": "assay.bash", "zsh": "_assay", "fish": "assay.fish"}


@not_sanitized
@pytest.mark.parametrize("shell", SHELLS)
def test_shells_complete(assay, report, shell):  # noqa: F811
    if not shutil.which(shell):
        pytest.skip(f"there is no {shell}")
    environment = assay.environment | {"PATH": f"{assay.folder}:{os.environ['PATH']}"}
    for words, expected in [("sh", "show"), ("report --ju", "--junit"), ("plugins --plugin x,segf", "x,segfault.1"),
                            ("codecs --codec good_", "good_1"), ("show thr", "throws-odd-bytes.1"),
                            ("help comp", "compare")]:  # fmt: skip
        script = SHELLS[shell].format(file=ROOT / "packaging/completion" / FILES[shell], words=words)
        lines = subprocess.run([shell, "-c", script], env=environment, capture_output=True, text=True).stdout.split()
        assert lines == [expected], (words, lines)
