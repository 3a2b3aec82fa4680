# The type stub shipped with the package names every function of the extension, with the same
# parameters in the same order; the helpers written in Python carry their own hints.
import ast
import inspect
import pathlib
import re
import typing

import korvane
from korvane import _korvane


def stub_functions():
    stub = pathlib.Path(korvane.__file__).with_name("_korvane.pyi")
    tree = ast.parse(stub.read_text())
    return {node.name: node for node in tree.body
            if isinstance(node, (ast.FunctionDef, ast.ClassDef))}


def test_the_stub_describes_every_function_of_the_extension_with_its_parameters():
    stub = stub_functions()
    public = {name for name in dir(_korvane) if not name.startswith("__")}
    assert set(stub) == public
    for name in public - {"KorvaneError"}:
        # pybind11 writes the signature as the docstring's first line: name(a: T, b: T = d) -> R
        signature = getattr(_korvane, name).__doc__.splitlines()[0]
        params = re.findall(r"(\w+): ", signature[signature.index("("):signature.rindex(")")])
        node = stub[name]
        declared = [a.arg for a in node.args.args + node.args.kwonlyargs]
        assert declared == params, name


def test_the_helpers_written_in_python_are_annotated_throughout():
    helpers = [getattr(korvane, name) for name in korvane.__all__]
    helpers = [f for f in helpers if inspect.isfunction(f) and f.__module__ == "korvane"]
    assert {f.__name__ for f in helpers} >= {"grid", "rgb_to_spectrum", "resample", "load_holder"}
    for f in helpers:
        # get_type_hints resolves every annotation: a misspelt name fails here, not in a checker.
        hints = typing.get_type_hints(f)
        assert set(hints) == set(inspect.signature(f).parameters) | {"return"}, f.__name__
    assert set(typing.get_type_hints(korvane.Holder)) == set(korvane.Holder._fields)
