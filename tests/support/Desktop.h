#pragma once

#include <QList>
#include <QObject>
#include <QUrl>

namespace murmeli {

/// Takes what would be opened on the desktop of whoever runs the tests.
class Desktop : public QObject {
    Q_OBJECT

public:
    Desktop();
    ~Desktop() override;
    Q_DISABLE_COPY_MOVE(Desktop)

    QList<QUrl> opened;

public slots:
    void open(const QUrl& url) { opened.append(url); }
};

} // namespace murmeli
