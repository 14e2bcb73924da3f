#include "MeasureControl.h"

#include <QAction>
#include <QMainWindow>

#include "LookDock.h"
#include "MeasureOverlay.h"
#include "MeasurePanel.h"
#include "PictureView.h"

CxMeasureControl::CxMeasureControl(QAction* measure, CxPictureView& view, QMainWindow& frame)
    : m_action(measure)
    , m_view(view)
    , m_panel(new CxMeasurePanel(&frame))
    , m_overlay(new CxMeasureOverlay(view))
    , m_pace([this] { this->measure(); })
{
    fx_AddLookDock(frame, QStringLiteral("measureDock"), tr("Region and Profile"), m_panel, m_action);
    connect(m_action, &QAction::toggled, this, [this](bool isOn) {
        m_overlay->setVisible(isOn);
        if (isOn)
            takePicture();
    });
    connect(&m_view, &CxPictureView::pictureShown, this, [this] {
        if (m_action->isChecked())
            takePicture();
    });
    connectOverlay();
}

void CxMeasureControl::connectOverlay()
{
    connect(m_panel, &CxMeasurePanel::placesChanged, this, &CxMeasureControl::takePlaces);
    connect(m_panel, &CxMeasurePanel::drawsLineChanged, m_overlay, [this](bool isLine) {
        m_overlay->setDraws(isLine ? CxMeasureOverlay::Draws::Line : CxMeasureOverlay::Draws::Region);
    });
    connect(m_overlay, &CxMeasureOverlay::regionDrawn, m_panel, &CxMeasurePanel::setRegion);
    connect(m_overlay, &CxMeasureOverlay::lineDrawn, m_panel, &CxMeasurePanel::setLine);
}

void CxMeasureControl::takePlaces()
{
    m_overlay->setRegion(m_panel->region());
    m_overlay->setLine(m_panel->line());
    m_pace.request();
}

void CxMeasureControl::takePicture()
{
    if (!m_view.picture().image.isNull())
        m_panel->setPictureSize(m_view.picture().image.size());
    m_pace.request();
}

void CxMeasureControl::measure()
{
    if (!m_action->isChecked())
        return;
    m_panel->showStatistics(fx_RegionStatistics(m_view.picture(), m_panel->region()));
    m_panel->showProfile(fx_Profile(m_view.picture(), m_panel->line()));
}
