#include "LookControl.h"

#include <QAction>
#include <QMainWindow>

#include "Actions.h"
#include "InfoOverlay.h"
#include "LevelsPanel.h"
#include "LiveControl.h"
#include "LookDock.h"
#include "PictureView.h"
#include "PlayControl.h"

CxLookControl::CxLookControl(CxActions& actions, CxPictureView& view, CxPlayControl& play,
                             CxLiveControl& live, QWidget& window)
    : m_actions(actions.look)
    , m_view(view)
    , m_frame(new QMainWindow(&window, Qt::Widget))
    , m_levels(new CxLevelsPanel(actions.look.markClipping, m_frame))
    , m_histogram([this] { showHistogram(); })
    , m_measure(actions.look.measure, view, *m_frame)
    , m_turn(actions.look, view)
{
    connectZoom(actions);
    buildLevels();
    new CxInfoOverlay(actions.look.info, view, play, live); // the view's own
    connect(&play, &CxPlayControl::opened, &m_turn, &CxTurnControl::reset);
    connect(&live, &CxLiveControl::begun, &m_turn, &CxTurnControl::reset);
    connect(&m_view, &CxPictureView::pictureShown, this, [this](SxShownPicture const&, bool isFirst) {
        if (isFirst) // of another depth, perhaps, to which the levels do not belong
            showHistogram();
        else
            m_histogram.request();
    });
    connect(m_actions.markClipping, &QAction::toggled, this, &CxLookControl::updateLook);
}

void CxLookControl::connectZoom(CxActions const& actions)
{
    connect(actions.fit, &QAction::triggered, &m_view, &CxPictureView::fit);
    connect(actions.actualSize, &QAction::triggered, &m_view, &CxPictureView::showActualSize);
    connect(actions.zoomIn, &QAction::triggered, &m_view, &CxPictureView::zoomIn);
    connect(actions.zoomOut, &QAction::triggered, &m_view, &CxPictureView::zoomOut);
}

QWidget* CxLookControl::frame(QWidget* pages)
{
    m_frame->setCentralWidget(pages);
    return m_frame;
}

void CxLookControl::buildLevels()
{
    fx_AddLookDock(*m_frame, QStringLiteral("levelsDock"), tr("Histogram and Levels"), m_levels,
                   m_actions.levels);
    connect(m_actions.levels, &QAction::toggled, this, [this] {
        showHistogram();
        updateLook();
    });
    connect(m_levels, &CxLevelsPanel::levelsChanged, this, &CxLookControl::updateLook);
}

void CxLookControl::showHistogram()
{
    if (m_actions.levels->isChecked())
        m_levels->setHistogram(fx_Histogram(m_view.picture()));
}

void CxLookControl::updateLook()
{
    SxPictureLook look = m_view.look();
    look.levels.reset();
    if (m_actions.levels->isChecked() && m_view.picture().data) {
        SxLevels const levels = m_levels->levels();
        if (!(levels == fx_NeutralLevels(m_view.picture().bits)))
            look.levels = levels;
    }
    look.marksClipping = m_actions.markClipping->isChecked();
    m_view.setLook(look);
}
