#pragma once
#include "app/window/window_front_end.h"
#include "host/acap/docman.h"
#include "host/aced/edmessage.h"
namespace window {
class DocumentGuard { public: DocumentGuard(WindowFrontEnd&, QWidget*){}
 bool open(const QString&p){ auto r=acDocManager()->openDocument(p); if(!r) acedAlert(r.error()); return bool(r);} 
 bool save(AcApDocument*d){ return bool(acDocManager()->saveDocument(d,{})); } bool saveAs(AcApDocument*){return false;} bool mayClose(AcApDocument*){return true;} void offerRecovery(){} void watch(){} };
}
