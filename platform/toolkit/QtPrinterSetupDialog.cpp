#include "platform/toolkit/QtPrinterSetupDialog.h"

#include "failures/failure_text.h"
#include "platform/services/FileDialog.h"
#include "platform/services/PrintService.h"
#include "platform/windows/background_work.h"
#include "platform/windows/front_window.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>

#include <memory>

namespace selfreport {

namespace {

struct FoundPrinters {
    std::vector<Printer> printers;
    QString problem; ///< why there are none; empty if there are
};

FoundPrinters findPrinters()
{
    const auto found = std::make_shared<FoundPrinters>();
    try {
        PrintService& service = PrintServiceInUse::current();
        if (!runInBackground(
                QStringLiteral("正在查找打印机"),
                [found, &service](WorkProgress&) { found->printers = service.printers(); },
                Waiting::untilCancelled, printServicePatience))
            return {{}, QStringLiteral("打印服务没有回答。")};
    } catch (const OutOfTime&) {
        return {{}, QStringLiteral("打印服务没有回答。")};
    } catch (const std::exception& error) {
        return {{}, QString::fromStdString(failures::sentenceOf(error))};
    }
    if (found->printers.empty())
        found->problem = QStringLiteral("没有可用的打印机，可以打印到PDF文件。");
    return *found;
}

/// Papers as a print service names them.
constexpr struct {
    const char *code, *caption;
} papers[] = {{"A4", "A4"}, {"A3", "A3"},       {"A5", "A5"},         {"B4", "B4"},
              {"B5", "B5"}, {"Letter", "信纸"}, {"Legal", "法律用纸"}};

class SetupWindow : public QDialog {
public:
    SetupWindow(const FoundPrinters& found, const PrinterSetup& first)
        : QDialog(frontWindow())
        , m_setup(first)
    {
        setObjectName(QStringLiteral("printerSetupDialog"));
        setWindowTitle(QStringLiteral("打印机设置"));
        auto* const form = new QFormLayout(this);
        form->addRow(QStringLiteral("打印机:"), &m_printer);
        form->addRow(QString(), &m_problem);
        form->addRow(QStringLiteral("纸张:"), &m_paper);
        form->addRow(QStringLiteral("份数:"), &m_copies);
        form->addRow(QString(), &m_collated);
        form->addRow(QString(), &m_bothSides);
        form->addRow(QString(), &m_inColour);
        auto* const buttons = new QDialogButtonBox(this);
        addButton(*buttons, QDialogButtonBox::AcceptRole, "cmdOK", "确定(&O)");
        addButton(*buttons, QDialogButtonBox::RejectRole, "cmdClose", "取消(&C)");
        form->addRow(buttons);
        connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
        connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
        name();
        fillPrinters(found);
        fillSettings();
    }

    void accept() override
    {
        const QString printer = m_printer.currentData().toString();
        if (m_printer.currentIndex() == m_printer.count() - 1) {
            FileDialogSettings settings;
            settings.filter = "PDF文件(*.pdf)|*.pdf";
            settings.fileName = m_setup.file;
            settings.flags = FileDialogSettings::overwritePrompt;
            const auto file = FileDialogInUse::current().chooseToSave(settings);
            if (!file)
                return;
            m_setup.file = *file;
        } else {
            m_setup.file.clear();
        }
        m_setup.printer = printer.toStdString();
        m_setup.paper = m_paper.currentData().toString().toStdString();
        m_setup.copies = m_copies.value();
        m_setup.collated = m_collated.isChecked();
        m_setup.bothSides = m_bothSides.isChecked();
        m_setup.inColour = m_inColour.isChecked();
        QDialog::accept();
    }

    const PrinterSetup& setup() const { return m_setup; }

private:
    static void addButton(QDialogButtonBox& box, QDialogButtonBox::ButtonRole role, const char* name,
                          const char* caption)
    {
        box.addButton(QString::fromUtf8(caption), role)->setObjectName(QLatin1String(name));
    }

    void name()
    {
        m_printer.setObjectName(QStringLiteral("cboPrinter"));
        m_paper.setObjectName(QStringLiteral("cboPaper"));
        m_copies.setObjectName(QStringLiteral("txtCopies"));
        m_collated.setObjectName(QStringLiteral("chkCollated"));
        m_bothSides.setObjectName(QStringLiteral("chkBothSides"));
        m_inColour.setObjectName(QStringLiteral("chkColour"));
        m_problem.setObjectName(QStringLiteral("lblProblem"));
        m_collated.setText(QStringLiteral("逐份打印"));
        m_bothSides.setText(QStringLiteral("双面打印"));
        m_inColour.setText(QStringLiteral("彩色"));
    }

    void fillPrinters(const FoundPrinters& found)
    {
        for (const Printer& printer : found.printers) {
            const QString shown = QString::fromStdString(printer.name);
            const QString description = QString::fromStdString(printer.description);
            m_printer.addItem(
                description.isEmpty() || description == shown ? shown : shown + " (" + description + ')',
                shown);
            if (m_setup.printer.empty() ? printer.isDefault : printer.name == m_setup.printer)
                m_printer.setCurrentIndex(m_printer.count() - 1);
        }
        m_printer.addItem(QStringLiteral("打印到PDF文件…"), QString());
        if (!m_setup.file.empty())
            m_printer.setCurrentIndex(m_printer.count() - 1);
        m_problem.setText(found.problem);
        m_problem.setVisible(!found.problem.isEmpty());
        m_problem.setWordWrap(true);
    }

    void fillSettings()
    {
        m_paper.addItem(QStringLiteral("打印机的纸张"), QString());
        for (const auto& [code, caption] : papers)
            m_paper.addItem(QString::fromUtf8(caption), QLatin1String(code));
        m_paper.setCurrentIndex(std::max(0, m_paper.findData(QString::fromStdString(m_setup.paper))));
        m_copies.setRange(1, 999);
        m_copies.setValue(m_setup.copies);
        m_collated.setChecked(m_setup.collated);
        m_bothSides.setChecked(m_setup.bothSides);
        m_inColour.setChecked(m_setup.inColour);
    }

    PrinterSetup m_setup;
    QComboBox m_printer, m_paper;
    QSpinBox m_copies;
    QCheckBox m_collated, m_bothSides, m_inColour;
    QLabel m_problem;
};

} // namespace

std::optional<PrinterSetup> QtPrinterSetupDialog::choose(const PrinterSetup& first)
{
    SetupWindow window(findPrinters(), first);
    if (window.exec() != QDialog::Accepted)
        return {};
    return window.setup();
}

} // namespace selfreport
