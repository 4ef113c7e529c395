#pragma once

#include "MenuCommand.h"

#include <QString>
#include <QStringList>
#include <QUrl>

#include <memory>

namespace hazelmark {

class PhotoFile;

/// What the main screen needs of the application: the state that is the process's own, not the screen's, and the
/// texts. The application hands it to the screen, and outlives it. Main thread only.
class ApplicationDelegate
{
public:
    virtual ~ApplicationDelegate() = default;

    /// The open photo; empty as long as none was accepted.
    virtual std::shared_ptr<PhotoFile> selectedImageFile() const = 0;
    virtual void setSelectedImageFile(std::shared_ptr<PhotoFile> file) = 0;

    /// Paths of photos that wait to be processed. Nothing fills it: closing asks about unsaved changes only when a
    /// shell that works through several photos does.
    virtual QStringList arraySelectedImagesToProcess() const = 0;

    /// Nothing can be edited: there is no photo yet, or it is being exported. The menus rest too.
    virtual bool isUiDisabled() const = 0;
    virtual void setIsUiDisabled(bool disabled) = 0;
    virtual bool isAppActive() const = 0;

    /// The text for `key` in the interface language, with placeholders as "%@" and "%d" (to be filled by
    /// formatString()); "(null)" for a key that the table does not have.
    virtual QString getLocalizedStringForKey(const QString &key) = 0;

    /// The address behind the Help menu's tag 0 to 7 (0 the manual, 2 this program's page in the software centre);
    /// empty for any other tag, and for one without a page.
    virtual QUrl linkForTag(int tag) const = 0;

    /// What the Edit and the View menu are to show from now on.
    virtual void setMenuState(const MenuState &) {}

    /// Asks on a sheet of the main window for a rating.
    virtual void showAlertForRateApp() = 0;
};

} // namespace hazelmark
