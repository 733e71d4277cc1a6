"""How the helper is asked, and its lists."""

import json

import pytest
from conftest import FIXTURES, IDS, start


def test_list_names_all_plugins_and_all_mapped_files(helper):
    modules = [helper.module(interface) for interface in IDS]
    modules.append({"name": "gone", "interface": "CLAP", "path": "/nowhere.so", "bundle": ""})
    result = helper.request("list", modules=modules)
    listing = json.loads(result.out)
    expected = {module["name"]: [{"id": IDS[module["interface"]], "interface": module["interface"]}]
                for module in modules[:-1]}
    expected["FixtureLadspa"].append({"id": "gain#2", "interface": "LADSPA"})
    assert listing["modules"] == expected
    assert list(listing["failed"]) == ["gone"] and "/nowhere.so" in listing["failed"]["gone"]
    assert str(FIXTURES / "FixtureLv2.so") in listing["files"], "with links resolved"
    assert result.of("LIST_MODULE") == [module["name"] for module in modules]
    assert result.records[-1] == ("LISTED_MODULES", "true") and result.code == 0


@pytest.mark.parametrize("interface, fault", [("LADSPA", "throw list"), ("frei0r", "null list")])
def test_a_module_that_cannot_be_listed_has_its_text(helper, interface, fault):
    module = helper.module(interface)
    listing = json.loads(helper.request("list", fault, modules=[module]).out)
    assert listing["modules"] == {} and listing["failed"][module["name"]]


def test_a_label_that_comes_again_is_another_exercise(helper):
    module = helper.module("LADSPA")
    ids = ["gain#2", "gain", "gone"]
    result = helper.request("run", modules=[module],
                            exercises=[{"module": module["name"], "id": id} for id in ids])
    assert result.of("EXERCISE") == [f"FixtureLadspa/{id}" for id in ids], result
    assert result.of("EXERCISES") == ["FixtureLadspa/gone"], "only what isn't there fails"


@pytest.mark.parametrize("arguments, code", [
    (["list", "{ladspa}", "{bundle}"], 0),
    (["run", "{ladspa}"], 0),
    (["run", "--depth", "load", "{bundle}", "urn:assayer:gain"], 0),
    (["run", "--depth", "load", "{bundle}", "urn:assayer:gone"], 2),
    (["run", "--depth", "deep", "{ladspa}"], 2),
    (["run", "{folder}"], 2),
    (["run", "{folder}/nothing"], 2),
    (["run"], 2),
    (["go", "{ladspa}"], 2),
])
def test_short_forms(helper, arguments, code):
    words = {"ladspa": FIXTURES / "FixtureLadspa.so", "bundle": helper.bundle(), "folder": helper.folder}
    result = start(*[argument.format(**words) for argument in arguments])
    assert result.code == code, result
    assert code == 0 or result.err.startswith("assayer-exercise: ") or "Usage" in result.err


@pytest.mark.parametrize("text, says", [
    ("{", "parse error"),
    ('{"modules": [{"name": "a"}]}', "interface"),
    ('{"modules": [{"name": "a", "interface": "DSSI", "path": "/a"}]}', "DSSI"),
    ('{"modules": [], "depth": "deep"}', "deep"),
    ('{"modules": [], "exercises": [{"module": "a", "id": "b"}]}', '"a"'),
])
def test_a_bad_request_names_the_file_and_what_is_wrong(helper, text, says):
    file = helper.folder / "bad.json"
    file.write_text(text)
    result = start("run", file)
    assert result.code == 2 and str(file) in result.err and says in result.err, result
