#include "host/LinkActionScripts.h"

#include "host/FontColorScripts.h"

#include <QFileInfo>
#include <QRegularExpression>

namespace quillon::host {

app::Status checkLinkId(const QString& linkId, const QString& docName)
{
    static const QRegularExpression digits(QStringLiteral("^\\d+$"));
    if (!digits.match(linkId).hasMatch())
        return app::makeError(QStringLiteral("\"%1\" is not a link id").arg(linkId), docName);
    return {};
}

QString showLinkScript(const QString& inDesignName, const QString& linkId, const QString& docName)
{
    return QStringLiteral("tell application \"%1\" \n activate \n tell document \"%2\" to show link id %3 \n end tell")
        .arg(scriptStringContent(inDesignName), scriptStringContent(docName), linkId);
}

QString relinkLinkScript(const QString& inDesignName, const QString& linkId, const QString& path,
                         const QString& docName)
{
    return QStringLiteral("set newFile to POSIX file \"%3\" \n"
                          "tell application \"%1\" \n"
                          " tell document \"%2\" \n"
                          "  try \n"
                          "   relink link id %4 to newFile \n"
                          "   try \n"
                          "    update link id %4 \n"
                          "   end try \n"
                          "   return true \n"
                          "  on error \n"
                          "   return false \n"
                          "  end try \n"
                          " end tell \n"
                          "end tell")
        .arg(scriptStringContent(inDesignName), scriptStringContent(docName), scriptStringContent(path), linkId);
}

QString relinkLinksInDocScript(const QString& inDesignName, const QString& docPath, const QString& linksFolder,
                               bool createIdml)
{
    const QFileInfo document(docPath);
    const QString idmlPath = document.absolutePath() + u'/' + document.completeBaseName() + QStringLiteral(".idml");
    QString folder = linksFolder;
    if (!folder.endsWith(u'/'))
        folder += u'/';
    // The folder is listed by the shell (quoted form keeps any name intact); an exact name wins
    // over one that differs only in case, since a case-sensitive volume may hold both.
    return QStringLiteral(
               "on matchingName(linkName, folderNames) \n"
               " considering case \n"
               "  repeat with n in folderNames \n"
               "   if (n as string) is linkName then return n as string \n"
               "  end repeat \n"
               " end considering \n"
               " ignoring case \n"
               "  repeat with n in folderNames \n"
               "   if (n as string) is linkName then return n as string \n"
               "  end repeat \n"
               " end ignoring \n"
               " return \"\" \n"
               "end matchingName \n"
               "set docPath to \"%2\" \n"
               "set linksFolder to \"%3\" \n"
               "set idmlPath to \"%4\" \n"
               "set createIDML to \"%5\" \n"
               "set folderNames to {} \n"
               "try \n"
               " set folderNames to paragraphs of (do shell script \"ls -A \" & quoted form of linksFolder) \n"
               "end try \n"
               "set allRelinked to true \n"
               "with timeout of 36000 seconds \n"
               " tell application \"%1\" \n"
               "  set theDoc to open docPath showing window false \n"
               "  repeat with aLink in (every link of theDoc) \n"
               "   if status of aLink is not link embedded then \n"
               "    set fileName to my matchingName(name of aLink, folderNames) \n"
               "    if fileName is not \"\" then \n"
               "     try \n"
               "      relink aLink to (POSIX file (linksFolder & fileName)) \n"
               "      try \n"
               "       update aLink \n"
               "      end try \n"
               "     on error \n"
               "      set allRelinked to false \n"
               "     end try \n"
               "    end if \n"
               "   end if \n"
               "  end repeat \n"
               "  save theDoc \n"
               "  if createIDML is \"1\" then export theDoc format InDesign markup to idmlPath without showing "
               "options \n"
               "  close theDoc saving no \n"
               " end tell \n"
               "end timeout \n"
               "return allRelinked")
        .arg(scriptStringContent(inDesignName), scriptStringContent(docPath), scriptStringContent(folder),
             scriptStringContent(idmlPath), createIdml ? QStringLiteral("1") : QStringLiteral("0"));
}

} // namespace quillon::host
