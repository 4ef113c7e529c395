#pragma once

#include "ApplicationDelegate.h"
#include "ProcessState.h"

namespace hazelmark {

/// The application as far as the screen asks for it. A text is its key and what is filled into it.
class ScreenApplication : public ApplicationDelegate
{
public:
    std::shared_ptr<PhotoFile> selectedImageFile() const override { return m_file; }
    void setSelectedImageFile(std::shared_ptr<PhotoFile> file) override { m_file = std::move(file); }
    QStringList arraySelectedImagesToProcess() const override { return m_toProcess; }
    bool isUiDisabled() const override { return ProcessState::shared().isUiDisabled; }
    void setIsUiDisabled(bool disabled) override { ProcessState::shared().isUiDisabled = disabled; }
    bool isAppActive() const override { return true; }
    QUrl linkForTag(int) const override { return {}; }
    QString getLocalizedStringForKey(const QString &key) override { return key + QStringLiteral(" %@"); }
    void showAlertForRateApp() override { ++m_rateAlerts; }
    void setMenuState(const MenuState &state) override { m_menu = state; }

    std::shared_ptr<PhotoFile> m_file;
    QStringList m_toProcess;
    int m_rateAlerts = 0;
    MenuState m_menu;
};

} // namespace hazelmark
