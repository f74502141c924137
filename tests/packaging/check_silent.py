"""Runs a validator and fails when it fails or says anything: some tell warnings and hints while they succeed."""

import subprocess
import sys

run = subprocess.run(sys.argv[1:], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
print(run.stdout, end="")
sys.exit(1 if run.returncode != 0 or run.stdout.strip() else 0)
