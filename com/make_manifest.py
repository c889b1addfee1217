# SPDX-License-Identifier: MIT
"""Makes the manifest by which programs use the server without registration, from the interfaces' own description.

Usage: make_manifest.py IDL VERSION PROCESSOR MANIFEST, VERSION as 8.1.0, PROCESSOR as manifests call it (amd64, x86).
"""

import re
import sys

DUAL = "{00020424-0000-0000-C000-000000000046}"  # the system's marshaller of dual interfaces


def main(idl_file, version, processor, manifest_file):
    with open(idl_file, encoding="utf-8") as file:
        idl = file.read()
    library = re.search(r"uuid\(([-0-9A-F]+)\),\s*version\(([.0-9]+)\)[^]]*\]\s*library (\w+)", idl)
    libid, library_version, name = "{%s}" % library.group(1), library.group(2), library.group(3)

    lines = ['<?xml version="1.0" encoding="UTF-8" standalone="yes"?>',
             '<assembly xmlns="urn:schemas-microsoft-com:asm.v1" manifestVersion="1.0">',
             f'  <assemblyIdentity type="win32" name="{name}" version="{version}.0" processorArchitecture="{processor}"/>',
             f'  <file name="{name}.dll">']
    for classid, classname in re.findall(r"uuid\(([-0-9A-F]+)\)[^]]*\]\s*coclass (\w+)", idl):
        lines.append(f'    <comClass clsid="{{{classid}}}" threadingModel="Apartment" tlbid="{libid}"'
                     f' progid="{name}.{classname}" description="{classname}"/>')
    lines.append(f'    <typelib tlbid="{libid}" version="{library_version}" helpdir=""/>')
    lines.append('  </file>')
    for iid, interface in re.findall(r"uuid\(([-0-9A-F]+)\)[^]]*\]\s*interface (\w+) :", idl):
        lines.append(f'  <comInterfaceExternalProxyStub name="{interface}" iid="{{{iid}}}" tlbid="{libid}"'
                     f' proxyStubClsid32="{DUAL}"/>')
    lines.append('</assembly>')
    with open(manifest_file, "w", encoding="utf-8", newline="\r\n") as file:
        file.write("\n".join(lines) + "\n")


if __name__ == "__main__":
    main(*sys.argv[1:])
