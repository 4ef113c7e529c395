#include "ProfileName.h"

#include <lcms2.h>

#include <memory>
#include <string>

namespace hazelmark {

QString profileName(const QByteArray &iccProfile)
{
    if (iccProfile.isEmpty())
        return {};
    const std::unique_ptr<void, int (*)(void *)> profile(
        cmsOpenProfileFromMem(iccProfile.constData(), cmsUInt32Number(iccProfile.size())), cmsCloseProfile);
    if (!profile)
        return {};
    const cmsUInt32Number bytes = cmsGetProfileInfo(profile.get(), cmsInfoDescription, "en", "US", nullptr, 0);
    std::wstring name(bytes / sizeof(wchar_t), L'\0');
    if (name.empty())
        return {};
    cmsGetProfileInfo(profile.get(), cmsInfoDescription, "en", "US", name.data(), bytes);
    const QString text = QString::fromWCharArray(name.c_str()).trimmed();
    return text.isEmpty() ? QString() : text;
}

} // namespace hazelmark
