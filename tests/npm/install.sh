#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# install.sh FOLDER: puts the published clients of package-lock.json into FOLDER/node_modules, unless they are there.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd -P)
folder=${1:?the folder to install into}
mkdir -p "$folder"
exec 9>"$folder/.lock"
if command -v flock >/dev/null; then flock 9; fi

wanted=$(cat "$here/package.json" "$here/package-lock.json" | cksum)-$(node --version)
stamp=$folder/.installed
[[ -e $stamp && $(<"$stamp") == "$wanted" ]] && exit 0

rm -rf "$folder/node_modules" "$stamp"
cp "$here/package.json" "$here/package-lock.json" "$folder/"
# Packages' own scripts are none of our business; the network may fail us once.
install() { npm ci --prefix "$folder" --ignore-scripts --no-audit --no-fund --loglevel=error </dev/null; }
install || install
printf '%s\n' "$wanted" >"$stamp"
