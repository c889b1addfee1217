// SPDX-License-Identifier: MIT
#include "cli/SheetPage.h"

#include "formats/JsonValue.h"
#include "host/ReaderAdvice.h"
#include "store/SheetRecords.h"

namespace kel {

void SheetPage::sheet(const host::Sheet& event)
{
    page_.sheet(pictureSheet(event));
}

void SheetPage::failure(const host::Failure& event)
{
    const host::AdviceRow* const advice = host::adviceOn(event);
    page_.failure({.title = validUtf8(event.title),
                   .description = validUtf8(event.description),
                   .source = validUtf8(event.source),
                   .cause = advice ? advice->cause : "",
                   .remedy = advice ? advice->remedy : ""});
    tell_(host::failureSentence(event) + "\n");
}

void SheetPage::end(const host::BatchEnd& event)
{
    page_.end(event.started);
}

} // namespace kel
