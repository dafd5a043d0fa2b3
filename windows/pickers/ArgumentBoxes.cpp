#include "windows/pickers/ArgumentBoxes.h"

#include "windows/icons/own_icon.h"

#include <algorithm>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>

namespace selfreport {

ArgumentBoxes::ArgumentBoxes(QWidget* window, QGridLayout* rows, const std::vector<Box>& boxes)
    : QObject(window)
{
    int index = 0;
    for (const auto& [label, hasPicker] : boxes) {
        const QString element = '_' + QString::number(index);
        auto* box = new QLineEdit;
        box->setObjectName("txt" + element);
        box->installEventFilter(this);
        connect(box, &QLineEdit::textChanged, this, [this] {
            if (changed)
                changed();
        });
        auto* caption = new QLabel(QString::fromUtf8(label));
        caption->setObjectName("Label2" + element);
        rows->addWidget(caption, index, 0);
        rows->addWidget(box, index, 1);
        if (hasPicker) {
            auto* image = new QToolButton;
            image->setObjectName("ImgSeek" + element);
            image->setIcon(ownIcon("seek"));
            image->setToolTip(QStringLiteral("查找 (F7)"));
            image->setAutoRaise(true);
            image->setFocusPolicy(Qt::NoFocus);
            connect(image, &QToolButton::clicked, this, [this, index, box] {
                seek(index);
                box->setFocus();
            });
            rows->addWidget(image, index, 2);
        }
        m_boxes.push_back(box);
        m_hasPicker.push_back(hasPicker);
        ++index;
    }
}

std::string ArgumentBoxes::textOf(std::size_t index) const
{
    return m_boxes[index]->text().toStdString();
}

void ArgumentBoxes::setTexts(std::span<const std::string> texts)
{
    for (std::size_t index = 0; index < std::min(texts.size(), m_boxes.size()); ++index)
        m_boxes[index]->setText(QString::fromStdString(texts[index]));
}

bool ArgumentBoxes::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::KeyPress || static_cast<QKeyEvent*>(event)->key() != Qt::Key_F7)
        return false;
    for (std::size_t index = 0; index < m_boxes.size(); ++index)
        if (m_boxes[index] == watched && m_hasPicker[index])
            seek(static_cast<int>(index));
    return true;
}

} // namespace selfreport
