// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTimeEdit>

#include <cmath>

/// A widget that draws pictures smooth. Where a screen is scaled by less than two, they are shrunk
/// from twice the size, and without this by leaving out rows and columns: their edges would be thin
/// in one place and thick in another.
template <class Widget> class SmoothPictures : public Widget {
public:
    using Widget::Widget;

protected:
    void initPainter(QPainter* painter) const override
    {
        Widget::initPainter(painter);
        painter->setRenderHint(QPainter::SmoothPixmapTransform);
        // A picture may end within a pixel. Where it can't, lines stay as sharp as they are.
        const qreal ratio = this->devicePixelRatioF();
        painter->setRenderHint(QPainter::Antialiasing, ratio > std::floor(ratio));
    }
};

// By these names the forms know them. To the style sheet they are what they are made of.
using PictureButton = SmoothPictures<QPushButton>;
using PictureLabel = SmoothPictures<QLabel>;
using PictureLineEdit = SmoothPictures<QLineEdit>;
using PicturePlainTextEdit = SmoothPictures<QPlainTextEdit>;
using PictureTimeEdit = SmoothPictures<QTimeEdit>;
