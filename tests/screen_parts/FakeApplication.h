#pragma once

#include "ApplicationDelegate.h"

namespace hazelmark {

/// An application whose texts are their keys, with room for the arguments that the texts take.
class FakeApplication : public ApplicationDelegate
{
public:
    std::shared_ptr<PhotoFile> selectedImageFile() const override { return m_file; }
    void setSelectedImageFile(std::shared_ptr<PhotoFile> file) override { m_file = std::move(file); }
    QStringList arraySelectedImagesToProcess() const override { return {}; }
    bool isUiDisabled() const override { return false; }
    void setIsUiDisabled(bool) override {}
    bool isAppActive() const override { return true; }
    QUrl linkForTag(int) const override { return {}; }
    QString getLocalizedStringForKey(const QString &key) override { return key + QStringLiteral("<%@>"); }
    void showAlertForRateApp() override { ++m_rateAlerts; }

    int m_rateAlerts = 0;

private:
    std::shared_ptr<PhotoFile> m_file;
};

} // namespace hazelmark
