// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Documents as modules see them. The object of a document that has been closed stays a while, so that a
// module that still holds it gets answers and not rubbish.

#include "acdocman.h"
#include "dbmain.h"
#include "drafthost/editor/Document.h"

namespace drafthost {

/// Null for null.
AcApDocument* apiDocument(Document* document);
AcDbDatabase* apiDatabase(Document& document);
/// The document behind an object; null when it has been closed.
Document* openDocumentOf(const AcApDocument* document);
/// The document goes; its object answers for a closed one from now on.
void retireDocument(Document& document);
void forgetDocuments();

}  // namespace drafthost
