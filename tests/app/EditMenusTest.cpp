// The Edit and the View menu, the factor for small screens, and the prompt that was not asked for.
#include "EditMenus.h"
#include "AlertSheet.h"
#include "Localisation.h"
#include "ScreenScale.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include <cmath>

namespace hazelmark {

TEST(EditMenus, ShowWhatCanBeDoneAndSayWhatWasChosen)
{
    qRegisterMetaType<MenuCommand>();
    QMenuBar bar;
    EditMenus menus(bar);
    QList<std::pair<MenuCommand, int>> chosen;
    QObject::connect(&menus, &EditMenus::commandTapped, [&](MenuCommand command, int index) {
        chosen.append({command, index});
    });
    Localisation texts;
    menus.setLocalizedStrings(texts);
    MenuState state;
    state.undo = QStringLiteral("Undo Stroke & more");
    state.storedPaintings = {QStringLiteral("one"), QStringLiteral("two")};
    state.mayEdit = true;
    state.showsPainting = false;
    menus.setState(state);
    // Every item: its words, its keys, whether it has a tick; in a second list, which are enabled.
    const auto listed = [&](bool words) {
        QString list;
        for (const QMenu *menu : {menus.menuEdit, menus.menuBrush, menus.menuView}) {
            list += words ? u'\n' + menu->title() : u" "_qs;
            for (const QAction *action : menu->actions()) {
                if (!words && !action->isSeparator() && !action->menu())
                    list += action->isEnabled() ? u'1' : u'0';
                if (words)
                    list += u'|' + action->text() + (action->isChecked() ? u"*"_qs : u""_qs);
                if (words && !action->shortcut().isEmpty())
                    list += u' ' + QKeySequence::listToString(action->shortcuts());
            }
        }
        return list.toStdString();
    };
    EXPECT_EQ(listed(true),
              "\nEdit|Undo Stroke && more Ctrl+Z|Redo Ctrl+Shift+Z; Ctrl+Y||Paste Photo Ctrl+V||"
              "Blur Everything Ctrl+Shift+A|Clear Painting Del|Brush||Save Painting As…|Open Painting…||one|two|"
              "Forget Stored Paintings\nBrush|Brush B|Eraser E||Smaller [|Larger ]|Softer {|Harder }\n"
              "View|Compare C|Show Painting G||Zoom In Ctrl++; Ctrl+=; +; =|Zoom Out Ctrl+-; -|Fit to Window Ctrl+0|"
              "Actual Pixels Ctrl+1||All Settings||Full Screen F11");
    EXPECT_EQ(listed(false), " 1011111111 111111 01000011");
    ASSERT_EQ(menus.storedPaintings().size(), 2);
    menus.storedPaintings()[1]->trigger();
    menus.item(MenuCommand::ShowPainting)->trigger();
    EXPECT_FALSE(menus.item(MenuCommand::ShowPainting)->isChecked()) << "the screen says so, not the click";
    const QList<std::pair<MenuCommand, int>> expected{{MenuCommand::RestorePainting, 1},
                                                      {MenuCommand::ShowPainting, 0}};
    EXPECT_EQ(chosen, expected);
    state.storedPaintings.clear();
    state.mayEdit = false;
    menus.setState(state);
    EXPECT_EQ(listed(false), " 10100001 000000 01000011") << "their keys with them";
    state.hasPhoto = state.mayOpen = true;
    menus.setState(state);
    EXPECT_EQ(listed(false), " 10100001 000000 01111111");
}

TEST(ScreenScale, BringsTheWindowOntoTheScreen)
{
    const std::pair<QSizeF, double> rows[] = {{{1600, 1000}, 1},        {{1366, 768}, 1},  {{1285, 737}, 1}, {{}, 1},
                                              {{960, 540}, 540 / 737.}, {{771, 443}, 0.6}, {{640, 480}, 0.6}};
    for (const auto &[visible, factor] : rows) {
        const double found = ScreenScale::factorFor(visible, 2);
        EXPECT_NEAR(found, factor, 2e-4) << visible.width();
        if (visible.width() >= 771) {
            EXPECT_LE(1220 + std::ceil(0.05 * visible.width() / found), std::ceil(visible.width() / found));
            EXPECT_LE(700 + std::ceil(0.05 * visible.height() / found), std::ceil(visible.height() / found));
        }
    }
    EXPECT_EQ(ScreenScale::factorFor({960, 540}, 1.25), 0.8) << "a point stays a pixel";
    EXPECT_EQ(ScreenScale::factorFor({960, 540}, 1), 1);
}

TEST(AlertSheet, ThatComesByItselfIsDeafAtFirst)
{
    for (const bool deaf : {true, false}) {
        auto *sheet = new AlertSheet(QStringLiteral("Rate Us"), {}, QStringLiteral("YES"), QStringLiteral("NO"));
        sheet->setAttribute(Qt::WA_DeleteOnClose);
        sheet->setDeafFor(std::chrono::hours(deaf ? 1 : 0));
        QSignalSpy finished(sheet, &QDialog::finished);
        sheet->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(sheet));
        QTest::keyClick(sheet->defaultButton(), Qt::Key_Space);
        EXPECT_EQ(finished.isEmpty(), deaf);
        if (deaf)
            sheet->done(AlertSheet::Dismissed);
    }
}

} // namespace hazelmark
