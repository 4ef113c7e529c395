#pragma once

#include "ForeignKinds.h"
#include "PictureFormat.h"

namespace hazelmark {

/// A file in the decoder program.
std::unique_ptr<PictureReader> makeForeignReader(SourceFile &source, const ForeignKind &kind);

} // namespace hazelmark
