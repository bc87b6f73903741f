#!/usr/bin/env bash
# Installs the Debian 12 packages the project builds and tests with.
set -euo pipefail
sudo_cmd=""
[ "$(id -u)" -eq 0 ] || sudo_cmd="sudo"
export DEBIAN_FRONTEND=noninteractive
$sudo_cmd apt-get update -qq
$sudo_cmd apt-get install -y -qq --no-install-recommends \
  cmake g++ make pkg-config python3 git \
  clang libclang-rt-14-dev clang-format \
  libgtest-dev libgmock-dev libbenchmark-dev \
  libpcap-dev libtins-dev libcli11-dev libyaml-cpp-dev libfmt-dev \
  tshark >/dev/null
