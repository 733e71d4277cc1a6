"""Modules that mean harm to the parent, or to each other: who is blamed, what is left, how long it takes."""

import resource
import shutil
import signal
import time

import pytest
from conftest import APP, not_sanitized
from test_assay import IMPL, assay, home, processes_in  # noqa: F401
from test_verdicts import check, slow  # noqa: F401

GOOD = [f"good.{i}" for i in range(1, 9)]
BUSY = 4  # seconds; other tests take the cores
LOST_KEEPER = ("ended", "killed or stopped what watched it")
CRASHED = ("crashed", "SIGSEGV")
FINE = ("good", "")

# The module: its verdict and reason among good ones. FINE: status 0.
PLUGINS = {
    "kills-keeper.1": LOST_KEEPER,
    "stops-keeper.1": LOST_KEEPER,
    "forks-then-crashes.1": CRASHED,
    "forks-then-hangs.1": ("hung", "3"),
    "forks-then-exits.1": ("ended", "7"),
    "forges-end.1": CRASHED,
    "forges-all.1": ("unsteady", "0"),
    "forges-failure.1": ("ended", "4"),
    "forges-of-other-thread.1": FINE,
    "writes-error.1": FINE,
    "silences-log.1": ("ended", "7"),
    "writes-records.1": FINE,
    "opens-records.1": FINE,
    "strays.1": FINE,
    "good.9] [PLUGINS]x": FINE,
    "E20261123 07:45:31.9 11 a.cpp:1] [ERROR]x": FINE,
}
CODECS = {
    "DECODER_KILLS_KEEPER": LOST_KEEPER,
    "ENCODER_STOPS_KEEPER": LOST_KEEPER,
    "DECODER_FORKS_THEN_EXITS": ("ended", "7"),
    "DECODER_FORKS_THEN_CRASHES": CRASHED,
    "DECODER_LIMITS_MEMORY": ("ended", "5"),
}
pytestmark = not_sanitized


def bad_items(report):
    """Verdict and reason of all that is bad, by name."""
    return {item["name"]: (item["verdict"], item["reason"]) for item in report["items"]
            if item["verdict"] not in ("good", "missing")}  # fmt: skip


def without_innocents(report):
    """Nobody but the codec modules and their tests may spoil anything."""
    return {item["name"]: item["spoils"] for item in report["items"] if item["spoils"]}


@pytest.mark.parametrize("module", PLUGINS)
def test_who_means_harm_is_blamed_alone(check, module):  # noqa: F811
    report = check("plugins", *GOOD[:3], module, *GOOD[3:])
    expected = {} if PLUGINS[module] == FINE else {module: PLUGINS[module]}
    assert bad_items(report) == expected and without_innocents(report) == {}
    assert len(report["notes"]) <= 25 and sum(map(len, report["notes"])) < 4000


@pytest.mark.parametrize("name", CODECS)
def test_a_coder_that_means_harm_is_blamed_alone(check, installation, name):  # noqa: F811
    installation.add_fixture("BadCodecs")
    report = check("codecs", codecs=[*(f"GOOD_{i}" for i in range(12)), name])
    assert bad_items(report) == {f"{name.split('_')[0].capitalize()}.{IMPL}.CODEC_ID_{name}": CODECS[name]}


def test_records_that_a_module_lets_get_lost_blame_nobody_else(check):  # noqa: F811
    module = "floods-without-waiting.1"
    assert set(bad_items(check("plugins", *GOOD[:3], module, *GOOD[3:]))) <= {module}


def test_memory_that_one_module_takes_is_not_the_end_of_a_check(check):  # noqa: F811
    report = check("plugins", *GOOD[:3], "limits-memory.1", *GOOD[3:])
    bad = bad_items(report)
    assert set(bad) <= set(GOOD[3:]) and {verdict for verdict, _ in bad.values()} <= {"unsteady"}
    assert set(without_innocents(report)) <= {"limits-memory.1"}


@pytest.mark.parametrize("fault", ["crashes-at-exit", slow("uses-up-time"), slow("reports-for-ever")])
def test_who_spoils_the_end_is_named(check, assay, home, fault):  # noqa: F811
    report = check("plugins", *GOOD, f"{fault}.1", "refuses.1")
    [remark] = [remark for item in report["items"] for remark in item["remarks"] if item["name"] == f"{fault}.1"]
    assert remark.startswith("makes its process end badly") and bad_items(report).keys() == {"refuses.1"}


@pytest.mark.parametrize("fault, most", [("crashes", 0.2), ("fails", 0.2)])
def test_bad_luck_is_nobody_elses_fault(check, fault, most):  # noqa: F811
    unlucky = [f"{fault}-by-chance.{i}" for i in range(6)]
    report = check("plugins", *(name for pair in zip(GOOD, unlucky) for name in pair), *GOOD[6:])
    assert set(bad_items(report)) <= set(unlucky)
    named = sum(map(len, without_innocents(report).values()))
    assert named <= 1, report["items"]  # about one time in a hundred


def test_a_test_that_fails_in_company_passes_with_a_remark(check, installation):  # noqa: F811
    installation.add_fixture("BadCodecs")
    report = check("codecs", codecs=[f"CROWDED_{i}" for i in range(40)])
    remarks = [remark for item in report["items"] for remark in item["remarks"]]
    assert bad_items(report) == {} and remarks and set(remarks) == {"failed beside other tests: too many"}


def test_a_test_that_fails_by_chance_is_unsteady(check, installation):  # noqa: F811
    installation.add_fixture("BadCodecs")
    report = check("codecs", codecs=["ENCODER_FAILS_EVERY_SECOND_TIME"])
    assert bad_items(report) == {f"Encoder.{IMPL}.CODEC_ID_ENCODER_FAILS_EVERY_SECOND_TIME": ("unsteady", "odd")}


def test_each_module_has_its_time_at_the_core_start(check, installation):  # noqa: F811
    installation.add_fixture("BadCodecs")
    report = check("codecs", *(f"takes-a-second.{i}" for i in range(4)))
    assert bad_items(report) == {}


def test_who_harms_the_tests_of_others_is_named(check, installation):  # noqa: F811
    installation.add("crashes-at-id.1")
    installation.add_fixture("BadCodecs")
    report = check("codecs", "good.1", "good.2")
    tests = [f"{coder}.{IMPL}.CODEC_ID_GOOD_1" for coder in ("Decoder", "Encoder")]
    assert bad_items(report) == dict.fromkeys(tests, ("unsteady", "SIGSEGV"))
    assert without_innocents(report) == {"crashes-at-id.1": tests}


def test_a_module_that_goes_away_is_missing(check):  # noqa: F811
    report = check("plugins", "good.1", "removes.good.4", "segfault.1", *GOOD[1:], "abort.1")
    missing = {name for name, verdict in report["verdicts"].items() if verdict == "missing"}
    assert missing == {"OglManager", "good.4"} and bad_items(report).keys() == {"segfault.1", "abort.1"}


def test_a_run_counts_only_with_its_list(assay, installation):  # noqa: F811
    """Without it, a trial alone would load everything."""
    installation.add("good.1", "refuses.1", "good.2")
    program = installation.directory / "Assayer"
    real = program.rename(installation.directory / "Real")
    program.write_text(f'#!/bin/sh\ncase "$6" in *alone*) rm "$6";; esac\nexec {real} "$@"\n')
    program.chmod(0o755)
    assay.run("plugins", "--app", installation.directory, status=3)
    report = assay.report()
    assert "couldn't read the list" in report["problem"] and bad_items(report) == {"refuses.1": ("not-reached", "")}


def test_an_unknown_name_costs_no_report(assay, installation):  # noqa: F811
    shutil.copy(APP / "assayer-list", installation.directory)
    installation.add("segfault.1")
    arguments = ["--implementation", "X_IMPL", "--plugin", "segfault.1"]
    events = assay.start("all", "--app", installation.directory, "--events", *arguments).communicate()[0]
    assert '"complete":false' in events.splitlines()[-1]
    assert assay.verdicts()["segfault.1"] == "crashed" and "X_IMPL" in assay.report()["problem"]


@pytest.mark.parametrize("stop, status", [(signal.SIGTERM, 143), (signal.SIGINT, 130)])
def test_a_flood_delays_no_signal(assay, installation, stop, status):  # noqa: F811
    installation.add("good.1", "writes-for-ever.1")
    process = assay.start("plugins", "--app", installation.directory, "--item-time", "60")
    time.sleep(1)
    started = time.monotonic()
    process.send_signal(stop)
    process.communicate(timeout=60)
    assert process.returncode == status and time.monotonic() - started < 1 + BUSY
    assert assay.verdicts()["good.1"] == "good" and not processes_in(installation.directory)


@pytest.mark.slow
def test_who_uses_up_the_descriptors_costs_one_search(check):  # noqa: F811
    limits = resource.getrlimit(resource.RLIMIT_NOFILE)
    resource.setrlimit(resource.RLIMIT_NOFILE, (1024, limits[1]))
    report = check("plugins", *(f"hoards.{i}" for i in range(11)), *(f"good.{i}" for i in range(40)))
    assert len(report["runs"]) < 300 and without_innocents(report) == {}
