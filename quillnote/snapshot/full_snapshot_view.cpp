#include "quillnote/snapshot/full_snapshot_view.h"

#include "quillnote/frame/settings/settings.h"
#include "quillnote/frame/settings/start_up_settings.h"

#include "host/aced/edinput.h"

void QN3_FullSnapshotView()
{
    acedInitGet(0, QStringLiteral("Yes No"));
    QString keyword;
    const int answer = acedGetKword(QStringLiteral("是否双屏显示(Y/N)[Y]? "), keyword);
    const bool on = answer != RTNORM || keyword != u"No";
    startUpSettings().snapshotMode =
        on ? StartUpSettings::kRecordFullView | StartUpSettings::kReviewFullView : 0;
    settings::setNumber(u"SnapReview", on ? 1 : 0);
    settings::setNumber(u"SnapRecord", on ? 1 : 0);
}

bool recordsFullView()
{
    return startUpSettings().snapshotMode & StartUpSettings::kRecordFullView;
}
