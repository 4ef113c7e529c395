#pragma once

#include <QByteArray>

#include <lcms2.h>

namespace hazelmark {

/// The profile's bytes with a fixed time of creation instead of the present one.
QByteArray savedProfile(cmsHPROFILE profile);

/// The name that the profile gives itself.
void setDescription(cmsHPROFILE profile, const char *text);

} // namespace hazelmark
