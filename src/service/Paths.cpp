#include "Paths.h"

using namespace Qt::StringLiterals;

namespace murmeli {

Paths::Paths(const QString& homeFolder, const Own& own)
    : home(homeFolder),
      root(home + u"/MeetingNotes"_s),
      recordings(root + u"/done"_s),
      logs(root + u"/logs"_s),
      inbox(root + u"/inbox"_s),
      userInstructions(root + u"/my_instructions.md"_s),
      vaultDir(home + u"/Documents/Vexlor/Vexlor/Meetings"_s),
      modelsMarker(home + u"/.cache/huggingface/hub"_s),
      stateFile(root + u"/state.json"_s),
      commandFile(root + u"/command.json"_s),
      authFlagFile(root + u"/auth_required.flag"_s),
      prefsFile(root + u"/prefs.json"_s),
      accountFile(root + u"/account.json"_s),
      updateScript(root + u"/update.sh"_s),
      python(root + u"/.venv/bin/python"_s),
      pdfScript(root + u"/pipeline/protocol_pdf.py"_s),
      rebuildScript(root + u"/pipeline/reprotocol.py"_s),
      recorderScript(root + u"/pipeline/native_rec.py"_s),
      notificationsLog(logs + u"/notifications.log"_s),
      appAgentFile(home + u"/Library/LaunchAgents/"_s + QLatin1StringView{appAgentLabel} + u".plist"_s),
      ownData(own.data),
      ownCache(own.cache),
      ownConfig(own.config),
      agentLoader(u"/bin/launchctl"_s)
{
}

} // namespace murmeli
