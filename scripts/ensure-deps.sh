#!/usr/bin/env bash
# Installs what the build needs and the machine lacks (Debian; run as root).
set -euo pipefail
need=()
command -v cmake >/dev/null || need+=(cmake)
command -v ninja >/dev/null || need+=(ninja-build)
command -v g++ >/dev/null || need+=(g++)
command -v clang++ >/dev/null || need+=(clang)
command -v ccache >/dev/null || need+=(ccache)
[ -e /usr/include/gtest/gtest.h ] || need+=(libgtest-dev)
[ -e /usr/include/benchmark/benchmark.h ] || need+=(libbenchmark-dev)
[ -e /usr/include/X11/Xlib.h ] || need+=(libx11-dev)
[ -e /usr/include/cairo/cairo.h ] || need+=(libcairo2-dev)
[ -e /usr/include/jpeglib.h ] || need+=(libjpeg-dev)
[ -e /usr/share/hershey-fonts/rowmans.jhf ] || need+=(hershey-fonts-data)
command -v python3 >/dev/null || need+=(python3)
command -v pkg-config >/dev/null || need+=(pkg-config)
command -v gs >/dev/null || need+=(ghostscript)
command -v xvfb-run >/dev/null || need+=(xvfb)
command -v xauth >/dev/null || need+=(xauth)
command -v xdotool >/dev/null || need+=(xdotool)
command -v xwd >/dev/null || need+=(x11-apps)
[ -x /usr/bin/convert ] || need+=(imagemagick)
command -v gmsh >/dev/null || need+=(gmsh)
/usr/bin/python3 -c 'import meshio' 2>/dev/null || need+=(python3-meshio)
/usr/bin/python3 -c 'import ezdxf' 2>/dev/null || need+=(python3-ezdxf)
command -v hp2xx >/dev/null || need+=(hp2xx)
[ -x /usr/sbin/cupsd ] || need+=(cups)
command -v lpstat >/dev/null || need+=(cups-client)
command -v lpr >/dev/null || need+=(cups-bsd)
ls /usr/lib/llvm-*/lib/clang/*/lib/linux/libclang_rt.fuzzer-x86_64.a >/dev/null 2>&1 || need+=(libclang-rt-dev)
if [ ${#need[@]} -gt 0 ]; then
  echo "Installing: ${need[*]}"
  export DEBIAN_FRONTEND=noninteractive
  apt-get update -qq
  apt-get install -y -qq "${need[@]}"
fi
