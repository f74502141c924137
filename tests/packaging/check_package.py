"""Makes the Debian package and fails when it would not bring along what the screens import, or could not be installed."""

import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

# Debian's package of each QML module that the screens import. "Quillbook" is our own.
PACKAGES = {
    "Quillbook": None,
    "QtQuick": "qml6-module-qtquick",
    "QtQuick.Controls.Basic": "qml6-module-qtquick-controls",
    "QtQuick.Dialogs": "qml6-module-qtquick-dialogs",
    "QtQuick.Layouts": "qml6-module-qtquick-layouts",
    "QtQuick.Templates": "qml6-module-qtquick-templates",
}
IMPORT = re.compile(r'^\s*import\s+([A-Za-z][\w.]*)', re.MULTILINE)
LISTS = Path("/var/lib/apt/lists")


def imports_in(sources):
    return {name for text in sources for name in IMPORT.findall(text)}


def names_in(depends):
    """The packages of a field, without versions; of alternatives each one."""
    return {entry.split("(")[0].split(":")[0].strip() for entry in re.split(r"[,|]", depends)}


def problems_of(imports, depends):
    problems = [f"no package is known for the import {name}" for name in sorted(imports - set(PACKAGES))]
    if not imports & set(PACKAGES):
        problems.append("no import was found in the screens")
    needed = {PACKAGES.get(name) for name in imports} - {None}
    return problems + [f"the package does not depend on {name}" for name in sorted(needed - names_in(depends))]


def makes_package(cpack, build, folder):
    command = [cpack, "-G", "DEB", "-B", folder, "--config", build / "CPackConfig.cmake"]
    run = subprocess.run(command, cwd=build, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
    packages = list(folder.glob("*.deb"))
    if run.returncode != 0 or len(packages) != 1:
        sys.exit(f"{run.stdout}\ncpack made {len(packages)} packages")
    return packages[0]


def problems_of_installing(package):
    """Nothing is installed. Needs to know which packages there are."""
    if not shutil.which("apt-get") or not any(LISTS.glob("*_Packages*")):
        print("without lists of packages the installation is not simulated")
        return []
    command = ["apt-get", "install", "--simulate", "--no-install-recommends", package]
    run = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
    return [] if run.returncode == 0 and "Inst quillbook " in run.stdout else [run.stdout]


def main(cpack, build, source):
    texts = [file.read_text() for file in (source / "shell/screens").rglob("*.qml")]
    with tempfile.TemporaryDirectory(prefix="package-", dir=build) as folder:
        package = makes_package(cpack, build, Path(folder))
        field = subprocess.run(["dpkg-deb", "--field", package, "Depends"], stdout=subprocess.PIPE, text=True, check=True)
        problems = problems_of(imports_in(texts), field.stdout) + problems_of_installing(package)
    print("\n".join(problems) or f"the package depends on {len(names_in(field.stdout))} others")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], Path(sys.argv[2]), Path(sys.argv[3])))
