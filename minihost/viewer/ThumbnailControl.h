#pragma once

#include <QObject>
#include <QTimer>
#include <memory>

#include "PictureReader.h"

class CxPlayer;
class QLabel;

/// Shows a small picture where the mouse points at the recording's timeline or overview. It is decoded by a
/// reader of its own, once the mouse has come to rest and nothing plays; only the place pointed at last
/// counts.
class CxThumbnailControl : public QObject
{
    Q_OBJECT

public:
    CxThumbnailControl(CxPlayer& player, QWidget& window);
    ~CxThumbnailControl() override;

    /// \param bottom  of the small picture, its middle, on the screen.
    void point(int number, QPoint const& bottom); ///< -1: at nothing

private:
    void request();
    void takePicture(int ticket, SxShownPicture const& picture);

    CxPlayer& m_player;
    QLabel* m_picture;
    QTimer m_rest;
    std::unique_ptr<CxPictureReader> m_reader; ///< null until the first is wanted
    QString m_fileName;                        ///< of what it has open
    int m_number = -1;
    int m_ticket = 0; ///< of the last request
    QPoint m_bottom;
};
