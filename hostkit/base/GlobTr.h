// Translation lookup by (context, text). Without an entry the text comes back unchanged.
#pragma once

#include "hostkit/HostExport.h"

namespace Korvane {

// The third argument is reserved by the host (a plural or a language); callers pass null.
KOR_HOST_API const char* GlobTr(const char* context, const char* text, const void* reserved);

namespace Translations {
// Installs the translation of `text` under `context`; the first one installed stays (the
// pointers handed out by GlobTr remain valid for the process).
KOR_HOST_API void Add(const char* context, const char* text, const char* translation);
// Takes the translation of `text` under `context` out of the table (the text goes back to being
// shown untranslated); what GlobTr handed out for it stays valid.
KOR_HOST_API void Withdraw(const char* context, const char* text);
// Forgets the lookup counts; installed translations stay.
KOR_HOST_API void Clear();
// How often (context, text) was looked up since the last Clear: lets a test see under which
// context a library asks for a text.
KOR_HOST_API int LookupCount(const char* context, const char* text);
} // namespace Translations

} // namespace Korvane
