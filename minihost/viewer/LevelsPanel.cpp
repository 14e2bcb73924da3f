#include "LevelsPanel.h"

#include <QAction>
#include <QCheckBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSpinBox>

#include "HistogramPlot.h"

CxLevelsPanel::CxLevelsPanel(QAction* markClipping, QWidget* parent)
    : QWidget(parent)
    , m_plot(new CxHistogramPlot(this))
    , m_shares(new QLabel(this))
    , m_black(new QSpinBox(this))
    , m_white(new QSpinBox(this))
    , m_gamma(new QDoubleSpinBox(this))
{
    m_plot->setObjectName(QStringLiteral("histogram"));
    m_plot->setAccessibleName(tr("Histogram"));
    m_shares->setObjectName(QStringLiteral("clippedShares"));
    m_shares->setWordWrap(true);
    m_black->setObjectName(QStringLiteral("blackLevel"));
    m_black->setToolTip(tr("Values up to this are shown black"));
    m_white->setObjectName(QStringLiteral("whiteLevel"));
    m_white->setToolTip(tr("Values from this on are shown white"));
    m_gamma->setObjectName(QStringLiteral("gamma"));
    m_gamma->setToolTip(tr("Above 1 dark parts are shown brighter, below 1 darker"));
    m_gamma->setRange(0.1, 10.0);
    m_gamma->setSingleStep(0.1);
    m_gamma->setValue(1.0);
    buildControls(markClipping);
    setLevels(levels());
}

void CxLevelsPanel::buildControls(QAction* markClipping)
{
    auto* const automatic = new QPushButton(tr("&Auto"), this);
    automatic->setObjectName(QStringLiteral("autoLevels"));
    automatic->setToolTip(tr("Spreads the values of this picture from black to white"));
    auto* const reset = new QPushButton(tr("Rese&t"), this);
    reset->setObjectName(QStringLiteral("resetLevels"));
    reset->setToolTip(tr("Shows the picture as it is"));
    auto* const clipping = new QCheckBox(markClipping->text(), this);
    clipping->setObjectName(QStringLiteral("markClippingBox"));
    clipping->setToolTip(
        tr("Stripes over pixels at full scale (red) and at 0 (blue), where the picture has lost detail"));

    auto* const form = new QFormLayout;
    form->addRow(tr("&Black:"), m_black);
    form->addRow(tr("&White:"), m_white);
    form->addRow(tr("&Gamma:"), m_gamma);
    auto* const buttons = new QHBoxLayout;
    buttons->addWidget(automatic);
    buttons->addWidget(reset);
    auto* const note = new QLabel(tr("Only what is shown changes, not what is saved."), this);
    note->setWordWrap(true);
    auto* const column = new QVBoxLayout(this);
    column->addWidget(m_plot, 1);
    column->addWidget(m_shares);
    column->addLayout(form);
    column->addLayout(buttons);
    column->addWidget(clipping);
    column->addWidget(note);

    connect(m_black, QOverload<int>::of(&QSpinBox::valueChanged), this, &CxLevelsPanel::takeInput);
    connect(m_white, QOverload<int>::of(&QSpinBox::valueChanged), this, &CxLevelsPanel::takeInput);
    connect(m_gamma, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this, &CxLevelsPanel::takeInput);
    connect(automatic, &QPushButton::clicked, this, [this] { setLevels(fx_AutoLevels(m_histogram)); });
    connect(reset, &QPushButton::clicked, this, [this] { setLevels(fx_NeutralLevels(m_histogram.bits)); });
    connect(clipping, &QCheckBox::clicked, markClipping, &QAction::trigger);
    connect(markClipping, &QAction::toggled, clipping, &QCheckBox::setChecked);
}

void CxLevelsPanel::setHistogram(SxHistogram const& histogram)
{
    bool const isNewScale = histogram.bits != m_histogram.bits;
    m_histogram = histogram;
    m_plot->setHistogram(histogram);
    if (isNewScale)
        setLevels(fx_NeutralLevels(histogram.bits));
    auto const percent = [this](double share) { return locale().toString(share * 100.0, 'f', 1); };
    int const full = (1 << histogram.bits) - 1;
    m_shares->setText(histogram.components == 0
                          ? QString()
                          : tr("%1 % of the values are 0, %2 % are %3.")
                                .arg(percent(fx_ShareAtBlack(histogram)),
                                     percent(fx_ShareAtFullScale(histogram)), QString::number(full)));
}

SxLevels CxLevelsPanel::levels() const { return {m_black->value(), m_white->value(), m_gamma->value()}; }

void CxLevelsPanel::setLevels(SxLevels const& levels)
{
    {
        QSignalBlocker const black(m_black), white(m_white), gamma(m_gamma);
        int const full = (1 << m_histogram.bits) - 1;
        m_black->setRange(0, std::max(full - 1, 0));
        m_white->setRange(1, std::max(full, 1));
        m_black->setValue(levels.black);
        m_white->setValue(levels.white);
        m_gamma->setValue(levels.gamma);
    }
    m_plot->setLevels(levels);
    emit levelsChanged();
}

/// Black stays below white: the one that is changed moves the other on.
void CxLevelsPanel::takeInput()
{
    SxLevels chosen = levels();
    if (chosen.white <= chosen.black) {
        if (sender() == m_white)
            chosen.black = chosen.white - 1;
        else
            chosen.white = chosen.black + 1;
    }
    setLevels(chosen);
}
