#include "MeasurePanel.h"

#include <QGridLayout>
#include <QLabel>
#include <QLocale>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QVBoxLayout>

#include "ProfilePlot.h"

CxMeasurePanel::CxMeasurePanel(QWidget* parent)
    : QWidget(parent)
    , m_region{newNumber("regionLeft", tr("Left edge of the region")),
               newNumber("regionTop", tr("Top edge of the region")),
               newNumber("regionWidth", tr("Width of the region")),
               newNumber("regionHeight", tr("Height of the region"))}
    , m_line{newNumber("lineX1", tr("Where the line begins, from the left")),
             newNumber("lineY1", tr("Where the line begins, from the top")),
             newNumber("lineX2", tr("Where the line ends, from the left")),
             newNumber("lineY2", tr("Where the line ends, from the top"))}
    , m_drawsRegion(new QRadioButton(tr("&Region"), this))
    , m_drawsLine(new QRadioButton(tr("Profile &line"), this))
    , m_values{newValue("mean"), newValue("lowest"), newValue("highest"), newValue("deviation")}
    , m_names(newValue("components"))
    , m_plot(new CxProfilePlot(this))
{
    m_drawsRegion->setObjectName(QStringLiteral("drawsRegion"));
    m_drawsRegion->setToolTip(tr("The mouse draws the region in the picture"));
    m_drawsRegion->setChecked(true);
    m_drawsLine->setObjectName(QStringLiteral("drawsLine"));
    m_drawsLine->setToolTip(tr("The mouse draws the line in the picture"));
    m_values[3]->setToolTip(tr("Standard deviation"));
    m_names->setAlignment(Qt::AlignLeft);
    m_plot->setObjectName(QStringLiteral("profile"));
    m_plot->setAccessibleName(tr("Profile along the line"));
    connect(m_drawsLine, &QRadioButton::toggled, this, &CxMeasurePanel::drawsLineChanged);

    auto* const regionGrid = new QGridLayout;
    addNumbers(regionGrid, m_region, {tr("X:"), tr("Y:"), tr("Width:"), tr("Height:")});
    auto* const table = new QGridLayout;
    QStringList const titles{tr("Mean"), tr("Min"), tr("Max"), tr("Dev.")};
    table->addWidget(m_names, 1, 0);
    for (int i = 0; i < 4; ++i) {
        table->addWidget(new QLabel(titles[i], this), 0, i + 1, Qt::AlignRight);
        table->addWidget(m_values[static_cast<size_t>(i)], 1, i + 1, Qt::AlignRight);
    }
    auto* const lineGrid = new QGridLayout;
    addNumbers(lineGrid, m_line, {tr("From X:"), tr("Y:"), tr("To X:"), tr("Y:")});

    auto* const column = new QVBoxLayout(this);
    column->addWidget(m_drawsRegion);
    column->addLayout(regionGrid);
    column->addLayout(table);
    column->addSpacing(6);
    column->addWidget(m_drawsLine);
    column->addLayout(lineGrid);
    column->addWidget(m_plot, 1);
}

QSpinBox* CxMeasurePanel::newNumber(char const* name, QString const& what)
{
    auto* const number = new QSpinBox(this);
    number->setObjectName(QLatin1String(name));
    number->setAccessibleName(what);
    number->setToolTip(what);
    number->setKeyboardTracking(false); // a number is taken when it is whole
    number->setRange(0, 9999);          // as wide as it is going to be
    connect(number, QOverload<int>::of(&QSpinBox::valueChanged), this, [this] {
        keepInside();
        emit placesChanged();
    });
    return number;
}

QLabel* CxMeasurePanel::newValue(char const* name)
{
    auto* const value = new QLabel(this);
    value->setObjectName(QLatin1String(name));
    value->setMinimumWidth(fontMetrics().horizontalAdvance(QStringLiteral("65535")));
    value->setAlignment(Qt::AlignRight);
    return value;
}

void CxMeasurePanel::addNumbers(QGridLayout* grid, std::array<QSpinBox*, 4> const& numbers,
                                QStringList const& names)
{
    for (int i = 0; i < 4; ++i) {
        QSpinBox* const number = numbers[static_cast<size_t>(i)];
        grid->addWidget(new QLabel(names[i], this), i / 2, i % 2 * 2);
        grid->addWidget(number, i / 2, i % 2 * 2 + 1);
    }
}

QRect CxMeasurePanel::region() const
{
    return {m_region[0]->value(), m_region[1]->value(), m_region[2]->value(), m_region[3]->value()};
}

QLine CxMeasurePanel::line() const
{
    return {m_line[0]->value(), m_line[1]->value(), m_line[2]->value(), m_line[3]->value()};
}

/// Left and top may be anywhere in the picture; width and height reach to its edge.
void CxMeasurePanel::keepInside()
{
    QSignalBlocker const width(m_region[2]), height(m_region[3]);
    m_region[2]->setRange(1, std::max(m_size.width() - m_region[0]->value(), 1));
    m_region[3]->setRange(1, std::max(m_size.height() - m_region[1]->value(), 1));
}

void CxMeasurePanel::setPictureSize(QSize const& size)
{
    if (size == m_size)
        return;
    m_size = size;
    for (std::array<QSpinBox*, 4> const* const numbers : {&m_region, &m_line}) {
        for (size_t i = 0; i < 4; ++i) {
            QSignalBlocker const blocker((*numbers)[i]);
            (*numbers)[i]->setRange(0, std::max((i % 2 == 0 ? size.width() : size.height()) - 1, 0));
        }
    }
    {
        QSignalBlocker const blocker(this); // one change
        setRegion({size.width() / 4, size.height() / 4, size.width() / 2, size.height() / 2});
        setLine({0, size.height() / 2, size.width() - 1, size.height() / 2});
    }
    emit placesChanged();
}

void CxMeasurePanel::setRegion(QRect const& region)
{
    {
        QSignalBlocker const left(m_region[0]), top(m_region[1]), width(m_region[2]), height(m_region[3]);
        m_region[0]->setValue(region.left());
        m_region[1]->setValue(region.top());
        keepInside();
        m_region[2]->setValue(region.width());
        m_region[3]->setValue(region.height());
    }
    emit placesChanged();
}

void CxMeasurePanel::setLine(QLine const& line)
{
    {
        QSignalBlocker const x1(m_line[0]), y1(m_line[1]), x2(m_line[2]), y2(m_line[3]);
        m_line[0]->setValue(line.x1());
        m_line[1]->setValue(line.y1());
        m_line[2]->setValue(line.x2());
        m_line[3]->setValue(line.y2());
    }
    emit placesChanged();
}

void CxMeasurePanel::showStatistics(std::vector<SxSampleStatistics> const& statistics)
{
    QStringList const names =
        statistics.size() == 1 ? QStringList{tr("Grey")} : QStringList{tr("Red"), tr("Green"), tr("Blue")};
    QStringList lines[4];
    for (SxSampleStatistics const& of : statistics) {
        lines[0].append(locale().toString(of.mean, 'f', 2));
        lines[1].append(QString::number(of.lowest));
        lines[2].append(QString::number(of.highest));
        lines[3].append(locale().toString(of.deviation, 'f', 2));
    }
    m_names->setText(statistics.empty() ? QString() : names.join(QLatin1Char('\n')));
    for (size_t i = 0; i < 4; ++i)
        m_values[i]->setText(lines[i].join(QLatin1Char('\n')));
}

void CxMeasurePanel::showProfile(std::vector<SxPixel> const& profile) { m_plot->setProfile(profile); }
