#!/usr/bin/env python3
"""Generates the model classes, the class tree, the MOF, the backend
declarations, the provider glue and the switch daemon protocol from the
class schema.

  scimgen.py --schema DIR --check            check the schema only
  scimgen.py --schema DIR --out DIR --list   print the files it would write
  scimgen.py --schema DIR --out DIR          write them

--module-version gives the version the provider registrations carry.

A file is rewritten only when its text changes, so that a schema edit
recompiles only what it touched. Errors are printed as file:line: reason and
end the run with status 1.
"""

import argparse
import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))

import gen_backend  # noqa: E402
import gen_classes  # noqa: E402
import gen_ipc  # noqa: E402
import gen_ipc_client  # noqa: E402
import gen_ipc_dispatch  # noqa: E402
import gen_mof  # noqa: E402
import gen_providers  # noqa: E402
import gen_registration  # noqa: E402
import gen_tree  # noqa: E402
import ipc_schema  # noqa: E402
import schema as schema_module  # noqa: E402

GENERATORS = (gen_classes, gen_tree, gen_mof, gen_backend, gen_providers, gen_registration,
              gen_ipc, gen_ipc_client, gen_ipc_dispatch)


def outputs(schema):
    files = {}
    for generator in GENERATORS:
        files.update(generator.generate(schema))
    return files


def write_if_changed(path, text):
    try:
        with open(path, encoding="utf-8") as f:
            if f.read() == text:
                return False
    except FileNotFoundError:
        pass
    os.makedirs(os.path.dirname(path), exist_ok=True)
    tmp = path + ".tmp"
    with open(tmp, "w", encoding="utf-8") as f:
        f.write(text)
    os.replace(tmp, path)
    return True


def main(argv):
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--schema", required=True, help="directory of the .schema files")
    parser.add_argument("--out", help="output directory (the generated/ tree)")
    parser.add_argument("--check", action="store_true", help="only check the schema")
    parser.add_argument("--list", action="store_true", help="list the output files, one per line")
    parser.add_argument("--module-version", default="0.0.0",
                        help="version of the provider library, for its registrations")
    args = parser.parse_args(argv)
    try:
        schema = schema_module.load(args.schema)
        schema.protocol = ipc_schema.load(args.schema)
        schema.version = args.module_version
    except schema_module.SchemaError as error:
        print("error: %s" % error, file=sys.stderr)
        return 1
    if args.check:
        return 0
    if not args.out:
        parser.error("--out is required unless --check is given")
    files = outputs(schema)
    if args.list:
        for name in sorted(files):
            print(os.path.join(args.out, name))
        return 0
    changed = sum(write_if_changed(os.path.join(args.out, n), t) for n, t in files.items())
    print("scimgen: %d classes, %d files, %d changed" % (len(schema.classes), len(files), changed))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
