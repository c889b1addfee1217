// SPDX-License-Identifier: MIT
// A host that finds the server by the manifest beside it, without registration.

#include "tests/windows/clients/Host.h"

namespace {

class Unregistered : public HostTest {};

TEST_F(Unregistered, TheManifestLeadsToTheServer)
{
    Ptr<_clsKELReader> reader;
    EXPECT_EQ(CoCreateInstance(CLSID_clsKELReader, nullptr, CLSCTX_INPROC_SERVER, IID__clsKELReader, reader.outVoid()),
              REGDB_E_CLASSNOTREG);

    ACTCTXW manifest{};
    manifest.cbSize = sizeof manifest;
    manifest.lpSource = L"KELReader81U.manifest";
    const HANDLE context = CreateActCtxW(&manifest);
    ASSERT_NE(context, INVALID_HANDLE_VALUE);
    ULONG_PTR cookie = 0;
    ASSERT_TRUE(ActivateActCtx(context, &cookie));

    CLSID classID{}; // an alias of the system's own, good within the context
    EXPECT_EQ(CLSIDFromProgID(L"KELReader81U.clsKELReader", &classID), S_OK);
    ASSERT_EQ(CoCreateInstance(classID, nullptr, CLSCTX_INPROC_SERVER, IID__clsKELReader, reader.outVoid()), S_OK);
    EXPECT_TRUE(get(reader.get(), L"LoadDefaults", {Value(24)}).truth());
    EXPECT_EQ(get(reader.get(), L"ReaderName").text(), L"Peripheral Dynamics Inc. VMR138");

    Ptr<_clsKELReaderWindow> window;
    EXPECT_EQ(CoCreateInstance(CLSID_clsKELReaderWindow, nullptr, CLSCTX_INPROC_SERVER, IID__clsKELReaderWindow,
                               window.outVoid()),
              S_OK);
    DeactivateActCtx(0, cookie);
    ReleaseActCtx(context);
}

} // namespace
