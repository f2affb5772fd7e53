# Sourced by script/package: the zip and the installer for Windows.
#   x64/, x86/   what cmake --install puts in place, the tool in 64 bits alone
#   docs/, examples/, the texts, and KoLink Studio, the example host as a program
windows() {
    local name="KoLink-$version" folder width compiler
    folder="$stage/$name"
    needs "$builds"/win{32,64}/bin/{KoLink,KoLinkPrecise}.dll "$builds"/win64/bin/kolink.exe
    for width in 32 64; do
        local place=x64
        [ $width = 64 ] || place=x86
        quietly cmake --install "$builds/win$width" --prefix "$folder/$place" --strip
    done
    rm -f "$folder/x86/bin/kolink.exe"
    quietly cmake -G Ninja -S examples/host-win32 -B "$stage/studio" -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_TOOLCHAIN_FILE="$top/cmake/mingw-x86_64.cmake" -DCMAKE_FIND_ROOT_PATH_MODE_PACKAGE=BOTH \
        -DKoLink_DIR="$folder/x64/lib/cmake/KoLink" -DHOST_TITLE="KoLink Studio" \
        -DCMAKE_CXX_FLAGS="-ffile-prefix-map=$top=." \
        -DCMAKE_EXE_LINKER_FLAGS="-s -Wl,--no-insert-timestamp"
    quietly ninja -C "$stage/studio"
    cp "$stage/studio/host_win32.exe" "$folder/x64/bin/KoLinkStudio.exe"
    cp -r docs examples "$folder"
    local text
    for text in LICENSE README.md CHANGELOG.md; do sed 's/$/\r/' "$text" > "$folder/${text%.md}.txt"; done
    find "$folder" -exec touch -d "@$SOURCE_DATE_EPOCH" {} +
    find "$folder" -type f -exec chmod 644 {} +

    sbom windows "$name" "$folder" > "$out/$name.spdx.json"
    python3 packaging/windows/zip.py "$folder" "$out/$name.zip"

    # What is put in place, and what is taken away again: these files and no other.
    (cd "$folder" && find . -mindepth 1 -type d -printf '%P\n' | sort | sed 's,/,\\,g; s,.*,CreateDirectory "$INSTDIR\\&",' &&
        find . -type f -printf '%P\n' | sort | awk -v from="$folder" '
            { windows = $0; gsub("/", "\\", windows)
              folder = windows; if (!sub(/\\[^\\]*$/, "", folder)) folder = ""
              printf "SetOutPath \"$INSTDIR%s\"\nFile \"%s/%s\"\n", folder == "" ? "" : "\\" folder, from, $0 }') > "$stage/put.nsh"
    (cd "$folder" && find . -type f -printf '%P\n' | sort | sed 's,/,\\,g; s,.*,Delete "$INSTDIR\\&",' &&
        find . -mindepth 1 -type d -printf '%P\n' | sort -r | sed 's,/,\\,g; s,.*,RMDir "$INSTDIR\\&",') > "$stage/take.nsh"
    quietly makensis -V2 -INPUTCHARSET UTF8 "-DVERSION=$version" "-DOUT=$out/$name-setup.exe" "-DSTAGE=$stage" \
        "-DLICENCE=$folder/LICENSE.txt" packaging/windows/setup.nsi
}
