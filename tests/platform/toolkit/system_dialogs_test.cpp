#include "platform/services/ScriptedDialogs.h"
#include "platform/toolkit/QtColourDialog.h"
#include "platform/toolkit/QtFileDialog.h"
#include "platform/toolkit/QtFontDialog.h"
#include "tests/platform/commit_text.h"
#include "tests/platform/WindowTest.h"

#include <QColorDialog>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <unistd.h>

namespace selfreport {
namespace {

class SystemDialogs : public test::WindowTest {
protected:
    static void writeFile(const QString& path)
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    QTemporaryDir folder;
};

TEST_F(SystemDialogs, ColourComesBackWithoutOpacity)
{
    QtColourDialog colours;
    whenModal("colourDialog", [](QWidget& window) {
        auto& dialog = dynamic_cast<QColorDialog&>(window);
        EXPECT_EQ(dialog.currentColor(), QColor(0x12, 0x34, 0x56));
        dialog.setCurrentColor(QColor(0xFE, 0x80, 0x01));
        dialog.accept();
    });
    EXPECT_EQ(colours.choose(0x123456), 0xFE8001U);
    whenModal("colourDialog", [](QWidget& window) { QTest::keyClick(&window, Qt::Key_Escape); });
    EXPECT_EQ(colours.choose(0), std::nullopt);
}

TEST_F(SystemDialogs, ColoursOpenFreshAndLeaveTheHostsAlone)
{
    QColorDialog::setCustomColor(3, Qt::red);
    for (int opening = 0; opening < 2; ++opening) {
        whenModal("colourDialog", [](QWidget& window) {
            EXPECT_EQ(QColorDialog::customColor(3), QColor(Qt::black));
            QColorDialog::setCustomColor(3, Qt::green);
            dynamic_cast<QColorDialog&>(window).setCurrentColor(Qt::blue);
            dynamic_cast<QDialog&>(window).accept();
        });
        QtColourDialog().choose(0);
        EXPECT_EQ(QColorDialog::customColor(3), QColor(Qt::red));
    }
}

TEST_F(SystemDialogs, FontKeepsWhatTheUserLeaves)
{
    QtFontDialog fonts;
    const FontChoice first{
        QApplication::font().family().toStdString(), 10.5, true, false, true, true, 0x123456};
    whenModal("fontDialog", [](QWidget& window) { control<QPushButton>(window, "fontOK").click(); });
    EXPECT_EQ(fonts.choose(first), first);

    whenModal("fontDialog", [](QWidget& window) {
        auto& colour = control<QComboBox>(window, "fontColour");
        colour.setCurrentIndex(colour.findText("蓝色"));
        control<QListWidget>(window, "fontStyle").setCurrentRow(3);
        QTest::keyClick(&window, Qt::Key_Return);
    });
    FontChoice changed = first;
    changed.colour = 0x0000FF;
    changed.italic = true;
    EXPECT_EQ(fonts.choose(first), changed);

    const FontChoice unknown{"没有的字体", 10.5, false, false, false, false, 0};
    for (const auto& [typed, points] : {std::pair("12.5", 12.5), std::pair("", 10.5), std::pair("4000", 10.5),
                                        std::pair("１２．５", 12.5)}) {
        whenModal("fontDialog", [text = typed](QWidget& window) {
            auto& size = control<QComboBox>(window, "fontSize");
            size.clearEditText();
            test::commitText(*size.lineEdit(), text);
            control<QPushButton>(window, "fontOK").click();
        });
        FontChoice sized = unknown;
        sized.points = points;
        EXPECT_EQ(fonts.choose(unknown), sized) << typed;
    }

    whenModal("fontDialog", [](QWidget& window) { QTest::keyClick(&window, Qt::Key_Escape); });
    EXPECT_EQ(fonts.choose(first), std::nullopt);
}

TEST_F(SystemDialogs, FileDialogTakesItsFiveSettings)
{
    writeFile(folder.filePath("旧.ss7"));
    FileDialogSettings settings{"*.ss7", "选择报表文件", "ss7 files|(*.ss7)", folder.path().toStdString(),
                                FileDialogSettings::hideReadOnly};
    QtFileDialog files;
    whenModal("fileDialog", [&](QWidget& window) {
        auto& dialog = dynamic_cast<QFileDialog&>(window);
        EXPECT_EQ(dialog.windowTitle(), "选择报表文件");
        EXPECT_EQ(dialog.nameFilters(), QStringList("ss7 files (*.ss7)"));
        EXPECT_EQ(dialog.directory().canonicalPath(), QDir(folder.path()).canonicalPath());
        EXPECT_EQ(dialog.acceptMode(), QFileDialog::AcceptOpen);
        dialog.selectFile(folder.filePath("旧.ss7"));
        QMetaObject::invokeMethod(&dialog, "accept");
    });
    EXPECT_EQ(files.chooseToOpen(settings), folder.filePath("旧.ss7").toStdString());
    whenModal("fileDialog", [](QWidget& window) { QTest::keyClick(&window, Qt::Key_Escape); });
    EXPECT_EQ(files.chooseToOpen(settings), std::nullopt);
}

TEST_F(SystemDialogs, SavingAddsTheSuffixAndRefusesReadOnlyFiles)
{
    FileDialogSettings settings;
    settings.filter = "报表文件(*.ss7)|*.ss7";
    settings.fileName = "新表";
    settings.folder = folder.path().toStdString();
    settings.flags = FileDialogSettings::overwritePrompt | FileDialogSettings::noReadOnlyFile;
    QtFileDialog files;
    const auto accept = [](QWidget& window) { QMetaObject::invokeMethod(&window, "accept"); };
    whenModal("fileDialog", accept);
    EXPECT_EQ(files.chooseToSave(settings), folder.filePath("新表.ss7").toStdString());

    writeFile(folder.filePath("新表.ss7")); // asks before it is replaced
    QString question;
    whenModal("fileDialog", [&](QWidget& window) {
        QTimer::singleShot(0, qApp, [&] {
            auto* box = dynamic_cast<QMessageBox*>(QApplication::activeModalWidget());
            ASSERT_NE(box, nullptr);
            question = box->text();
            box->button(QMessageBox::No)->click();
        });
        accept(window);
        dynamic_cast<QDialog&>(window).reject();
    });
    EXPECT_EQ(files.chooseToSave(settings), std::nullopt);
    EXPECT_TRUE(question.contains("新表.ss7")) << question.toStdString();

    if (geteuid() == 0)
        return; // may write everywhere
    QFile::setPermissions(folder.filePath("新表.ss7"), QFile::ReadOwner);
    settings.flags = FileDialogSettings::noReadOnlyFile;
    whenModal("fileDialog", [&](QWidget& window) {
        accept(window);
        whenModal("messageBox", [](QWidget& box) {
            whenModal("fileDialog", [](QWidget& again) { QTest::keyClick(&again, Qt::Key_Escape); });
            QTest::keyClick(&box, Qt::Key_Return);
        });
    });
    EXPECT_EQ(files.chooseToSave(settings), std::nullopt);
}

TEST(SystemDialogsInUse, CancelByThemselvesAndFollowTheirScript)
{
    EXPECT_EQ(ColourDialogInUse::current().choose(1), std::nullopt);
    ScriptedFileDialog files;
    files.answers = {"/a.ss7", std::nullopt};
    const FileDialogInUse inUse(files);
    FileDialogSettings settings;
    settings.title = "题";
    EXPECT_EQ(FileDialogInUse::current().chooseToOpen(settings), "/a.ss7");
    EXPECT_EQ(FileDialogInUse::current().chooseToSave(settings), std::nullopt);
    EXPECT_EQ(FileDialogInUse::current().chooseToSave(settings), std::nullopt); // no answers left
    ASSERT_EQ(files.asked.size(), 3U);
    EXPECT_EQ(files.asked[0].settings.title, "题");
    EXPECT_FALSE(files.asked[0].toSave);
    EXPECT_TRUE(files.asked[1].toSave);
}

} // namespace
} // namespace selfreport
