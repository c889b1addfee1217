// SPDX-License-Identifier: MIT
#include "options/win32/Annotations.h"

#include <objbase.h>
#include <oleacc.h>

namespace kel {

namespace {

const MSAAPROPID& numberOf(Annotations::What what)
{
    switch (what) {
    case Annotations::What::Name: return PROPID_ACC_NAME;
    case Annotations::What::Value: return PROPID_ACC_VALUE;
    case Annotations::What::Description: break;
    }
    return PROPID_ACC_DESCRIPTION;
}

DWORD changeOf(Annotations::What what)
{
    switch (what) {
    case Annotations::What::Name: return EVENT_OBJECT_NAMECHANGE;
    case Annotations::What::Value: return EVENT_OBJECT_VALUECHANGE;
    case Annotations::What::Description: break;
    }
    return EVENT_OBJECT_DESCRIPTIONCHANGE;
}

} // namespace

Annotations::Annotations()
{
    void* service = nullptr;
    if (SUCCEEDED(
            ::CoCreateInstance(CLSID_AccPropServices, nullptr, CLSCTX_INPROC_SERVER, IID_IAccPropServices, &service)))
        service_ = static_cast<IAccPropServices*>(service);
}

Annotations::~Annotations()
{
    if (service_)
        service_->Release();
}

void Annotations::say(HWND window, What what, const std::wstring& text)
{
    const auto known = said_.find({window, what});
    if (!service_ || text == (known == said_.end() ? std::wstring() : known->second))
        return;
    if (text.empty()) {
        service_->ClearHwndProps(window, static_cast<DWORD>(OBJID_CLIENT), CHILDID_SELF, &numberOf(what), 1);
        said_.erase(known);
    } else {
        service_->SetHwndPropStr(window, static_cast<DWORD>(OBJID_CLIENT), CHILDID_SELF, numberOf(what), text.c_str());
        said_.insert_or_assign({window, what}, text);
    }
    ::NotifyWinEvent(changeOf(what), window, OBJID_CLIENT, CHILDID_SELF);
}

void Annotations::takeBack()
{
    for (const auto& [about, text] : said_)
        service_->ClearHwndProps(about.first, static_cast<DWORD>(OBJID_CLIENT), CHILDID_SELF, &numberOf(about.second),
                                 1);
    said_.clear();
}

} // namespace kel
