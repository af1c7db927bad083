#!/bin/sh
# Installs those of scripts/packages.txt that are missing; says and does nothing when all are there.
set -eu
here=$(dirname "$0")
missing=
for package in $(sed 's/#.*//' "$here/packages.txt"); do
  case $(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null) in
    installed) ;;
    *) missing="$missing $package" ;;
  esac
done
[ -n "$missing" ] || exit 0
sudo=
[ "$(id -u)" -eq 0 ] || sudo=sudo
echo "Installing:$missing"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -q
# shellcheck disable=SC2086  # a list of words
$sudo apt-get install -q -y --no-install-recommends $missing
