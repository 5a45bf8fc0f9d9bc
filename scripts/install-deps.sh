#!/usr/bin/env bash
# Installs what building, running and testing Quillbox needs, and nothing that is already there.
# Safe to run again. Debian/Ubuntu use apt-get; macOS uses Homebrew.
set -euo pipefail

debian_packages=(
    build-essential cmake ninja-build ccache pkg-config git clang-format
    qt6-base-dev qt6-declarative-dev qt6-declarative-dev-tools qt6-svg-dev libgl-dev
    qml6-module-qtqml qml6-module-qtqml-models qml6-module-qtqml-workerscript
    qml6-module-qtquick qml6-module-qtquick-controls qml6-module-qtquick-templates
    qml6-module-qtquick-layouts qml6-module-qtquick-window qml6-module-qtquick-dialogs
    qml6-module-qtquick-shapes qml6-module-qttest qml6-module-qt-labs-platform
    qml6-module-qt-labs-folderlistmodel qt6-translations-l10n qt6-gtk-platformtheme
    qt6-qpa-plugins libqt6svg6 libqt6sql6-sqlite qt6-tools-dev qt6-l10n-tools
    fonts-noto-cjk fonts-noto-color-emoji fonts-dejavu-core
    yt-dlp ffmpeg zsh sqlite3 python3 nodejs libssl-dev zlib1g-dev libsecret-tools chromium
    xvfb xauth dbus-daemon xdotool xclip at-spi2-core python3-pyatspi
    desktop-file-utils appstream librsvg2-bin
)
brew_packages=(cmake ninja ccache qt yt-dlp ffmpeg openssl@3)

case "$(uname -s)" in
Linux)
    missing=()
    for p in "${debian_packages[@]}"; do
        dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
    done
    # The tests install a real Deno from the npm registry; some Node.js packages bring their own npm.
    command -v npm >/dev/null || missing+=(npm)
    if [ ${#missing[@]} -gt 0 ]; then
        echo "Installing: ${missing[*]}"
        sudo_cmd=()
        [ "$(id -u)" -eq 0 ] || sudo_cmd=(sudo)
        export DEBIAN_FRONTEND=noninteractive
        "${sudo_cmd[@]}" apt-get update -qq
        "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
    fi
    ;;
Darwin)
    command -v brew >/dev/null || { echo "Homebrew is required: https://brew.sh" >&2; exit 1; }
    for p in "${brew_packages[@]}"; do
        brew list --formula "$p" >/dev/null 2>&1 || brew install "$p"
    done
    ;;
*)
    echo "Unsupported system: $(uname -s)" >&2
    exit 1
    ;;
esac
