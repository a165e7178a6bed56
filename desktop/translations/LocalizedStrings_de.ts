<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE" sourcelanguage="en">
<context>
    <name>ImportWindow</name>
    <message>
        <source>Import URL</source>
        <translation>URL importieren</translation>
    </message>
    <message>
        <source>&amp;URL of a web page. Its links replace the queue:</source>
        <translation>&amp;URL einer Webseite. Ihre Links ersetzen die Warteschlange:</translation>
    </message>
    <message>
        <source>The page is fetched, and every link in it is queued. &quot;http://&quot; may be left out.</source>
        <translation>Die Seite wird geladen und jeder ihrer Links eingereiht. „http://“ kann weggelassen werden.</translation>
    </message>
    <message>
        <source>URL of a web page</source>
        <translation>URL einer Webseite</translation>
    </message>
</context>
<context>
    <name>LocalizedStrings</name>
    <message>
        <source>Are you sure you want to aggregate the files in &quot;%@&quot;?</source>
        <translation>Möchten Sie die Dateien in „%@“ wirklich nach Endungen in Unterordner einsortieren?</translation>
    </message>
    <message>
        <source>This process can not be undone.</source>
        <translation>Dieser Vorgang kann nicht rückgängig gemacht werden.</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Go to &quot;%@&quot;</source>
        <translation>„%@“ öffnen</translation>
    </message>
    <message>
        <source>Choose a Destination Folder</source>
        <translation>Zielordner auswählen</translation>
    </message>
    <message>
        <source>Choose</source>
        <translation>Auswählen</translation>
    </message>
    <message>
        <source>Choose destination folder</source>
        <translation>Wählen Sie den Zielordner aus</translation>
    </message>
    <message>
        <source>An error occured during download.</source>
        <translation>Beim Herunterladen ist ein Fehler aufgetreten.</translation>
    </message>
    <message>
        <source>You are not connected to the Internet.</source>
        <translation>Sie sind nicht mit dem Internet verbunden.</translation>
    </message>
    <message>
        <source>Do you want to run Network Diagnostics?</source>
        <translation>Möchten Sie die Netzwerkdiagnose starten?</translation>
    </message>
    <message>
        <source>No</source>
        <translation>Nein</translation>
    </message>
    <message>
        <source>Done!</source>
        <translation>Fertig!</translation>
    </message>
    <message>
        <source>Download Failed</source>
        <translation>Download fehlgeschlagen</translation>
    </message>
    <message>
        <source>hr</source>
        <translation>Std.</translation>
    </message>
    <message>
        <source>hrs</source>
        <translation>Std.</translation>
    </message>
    <message>
        <source>min</source>
        <translation>Min.</translation>
    </message>
    <message>
        <source>mins</source>
        <translation>Min.</translation>
    </message>
    <message>
        <source>sec</source>
        <translation>Sek.</translation>
    </message>
    <message>
        <source>secs</source>
        <translation>Sek.</translation>
    </message>
    <message>
        <source>0 secs</source>
        <translation>0 Sek.</translation>
    </message>
    <message>
        <source>Elapsed: </source>
        <translation>Vergangen: </translation>
    </message>
    <message>
        <source>, Remaining: </source>
        <translation>, verbleibend: </translation>
    </message>
    <message>
        <source>(%@ of %@ bytes</source>
        <translation>(%@ von %@ Byte</translation>
    </message>
    <message>
        <source>%d percent, %@, %s)</source>
        <translation>%d Prozent, %@, %s)</translation>
    </message>
    <message>
        <source>%d urls queued</source>
        <translation>Wartende URLs: %d</translation>
    </message>
    <message>
        <source>The server asks for a user name and a password.</source>
        <translation>Der Server verlangt einen Benutzernamen und ein Passwort.</translation>
    </message>
    <message>
        <source>The header of the server&apos;s answer is too long.</source>
        <translation>Die Kopfzeilen der Serverantwort sind zu lang.</translation>
    </message>
    <message>
        <source>The server announced an impossible length.</source>
        <translation>Der Server hat eine unmögliche Länge angekündigt.</translation>
    </message>
    <message>
        <source>This is a folder, not a file.</source>
        <translation>Das ist ein Ordner, keine Datei.</translation>
    </message>
    <message>
        <source>There is not enough memory for the transfer.</source>
        <translation>Für die Übertragung ist nicht genug Speicher da.</translation>
    </message>
    <message>
        <source>The server has sent nothing for too long.</source>
        <translation>Zeitüberschreitung: Der Server sendet keine Daten.</translation>
    </message>
    <message>
        <source>The URL is malformed.</source>
        <translation>Die URL ist fehlerhaft.</translation>
    </message>
    <message>
        <source>The proxy was not found.</source>
        <translation>Der Proxy wurde nicht gefunden.</translation>
    </message>
    <message>
        <source>The server was not found.</source>
        <translation>Der Server wurde nicht gefunden.</translation>
    </message>
    <message>
        <source>The server cannot be reached.</source>
        <translation>Der Server ist nicht erreichbar.</translation>
    </message>
    <message>
        <source>The server&apos;s answer cannot be understood.</source>
        <translation>Die Antwort des Servers ist unverständlich.</translation>
    </message>
    <message>
        <source>The server refused access.</source>
        <translation>Der Server hat den Zugriff verweigert.</translation>
    </message>
    <message>
        <source>The server sent less than the whole file.</source>
        <translation>Der Server hat die Datei nicht vollständig gesendet.</translation>
    </message>
    <message>
        <source>The server refused to send the file.</source>
        <translation>Der Server hat sich geweigert, die Datei zu senden.</translation>
    </message>
    <message>
        <source>The server took too long.</source>
        <translation>Zeitüberschreitung: Der Server hat zu lange gebraucht.</translation>
    </message>
    <message>
        <source>No secure connection to the server could be made.</source>
        <translation>Es konnte keine sichere Verbindung zum Server hergestellt werden.</translation>
    </message>
    <message>
        <source>The server redirected too many times.</source>
        <translation>Der Server hat zu oft weitergeleitet.</translation>
    </message>
    <message>
        <source>The server closed the connection without an answer.</source>
        <translation>Der Server hat die Verbindung ohne Antwort geschlossen.</translation>
    </message>
    <message>
        <source>The connection to the server broke off.</source>
        <translation>Die Verbindung zum Server ist abgebrochen.</translation>
    </message>
    <message>
        <source>The server&apos;s answer broke off or was damaged.</source>
        <translation>Die Antwort des Servers ist abgebrochen oder beschädigt.</translation>
    </message>
    <message>
        <source>The server&apos;s certificate is not trusted.</source>
        <translation>Das Zertifikat des Servers ist nicht vertrauenswürdig.</translation>
    </message>
    <message>
        <source>The server refused the user name or the password.</source>
        <translation>Der Server hat Benutzername oder Passwort abgelehnt.</translation>
    </message>
    <message>
        <source>The file of trusted certificates cannot be read.</source>
        <translation>Die Datei der vertrauenswürdigen Zertifikate kann nicht gelesen werden.</translation>
    </message>
    <message>
        <source>The server has no such file.</source>
        <translation>Die Datei ist auf dem Server nicht vorhanden.</translation>
    </message>
    <message>
        <source>The destination folder does not exist.</source>
        <translation>Der Zielordner existiert nicht.</translation>
    </message>
    <message>
        <source>A folder has the name of the file.</source>
        <translation>Ein Ordner trägt bereits den Namen der Datei.</translation>
    </message>
    <message>
        <source>There is not enough space in the destination folder.</source>
        <translation>Im Zielordner ist nicht genügend Speicherplatz frei.</translation>
    </message>
    <message>
        <source>The destination folder is not writable.</source>
        <translation>In den Zielordner kann nicht geschrieben werden.</translation>
    </message>
    <message>
        <source>The file is larger than the destination folder can hold.</source>
        <translation>Die Datei ist größer, als der Zielordner es zulässt.</translation>
    </message>
    <message>
        <source>The name of the file is too long for the destination folder.</source>
        <translation>Der Dateiname ist für den Zielordner zu lang.</translation>
    </message>
    <message>
        <source>The server answered %1.</source>
        <translation>Der Server hat mit „%1“ geantwortet.</translation>
    </message>
    <message>
        <source>The server redirected to something other than http, https or ftp.</source>
        <translation>Der Server hat auf etwas anderes als http, https oder ftp weitergeleitet.</translation>
    </message>
    <message>
        <source>The transfer failed: %1.</source>
        <translation>Die Übertragung ist fehlgeschlagen: %1.</translation>
    </message>
    <message>
        <source>The file could not be written: %1.</source>
        <translation>Die Datei konnte nicht geschrieben werden: %1.</translation>
    </message>
    <message>
        <source>The unfinished file was removed or replaced by something else.</source>
        <translation>Die unfertige Datei wurde entfernt oder durch etwas anderes ersetzt.</translation>
    </message>
    <message>
        <source>There is no destination folder for the file.</source>
        <translation>Für die Datei gibt es keinen Zielordner.</translation>
    </message>
    <message>
        <source>Only http, https and ftp URLs can be downloaded.</source>
        <translation>Nur URLs mit http, https oder ftp können heruntergeladen werden.</translation>
    </message>
    <message>
        <source>Browsers say their address only while accessibility is on for your session.</source>
        <translation>Die Adresse eines Browsers lässt sich nur lesen, solange die Barrierefreiheit für Ihre Sitzung eingeschaltet ist.</translation>
    </message>
    <message>
        <source>Once accessibility is on, start Firefox again.</source>
        <translation>Starten Sie Firefox neu, sobald die Barrierefreiheit eingeschaltet ist.</translation>
    </message>
    <message>
        <source>Once accessibility is on, start the browser again. If it still says no address, start it with the option --force-renderer-accessibility.</source>
        <translation>Starten Sie den Browser neu, sobald die Barrierefreiheit eingeschaltet ist. Lässt sich die Adresse dann immer noch nicht lesen, starten Sie ihn mit der Option --force-renderer-accessibility.</translation>
    </message>
    <message>
        <source>Once accessibility is on, start GNOME Web again.</source>
        <translation>Starten Sie GNOME Web neu, sobald die Barrierefreiheit eingeschaltet ist.</translation>
    </message>
    <message>
        <source>Could not retrieve browser URL.</source>
        <translation>Die Adresse des Browsers konnte nicht ermittelt werden.</translation>
    </message>
    <message>
        <source>Either your browser is not running, doesn&apos;t have an open window, or it isn&apos;t supported by this feature.</source>
        <translation>Entweder läuft Ihr Browser nicht, er hat kein offenes Fenster, oder diese Funktion unterstützt ihn nicht.</translation>
    </message>
    <message>
        <source>The server took too long to send the header of its answer.</source>
        <translation>Der Server hat die Kopfzeilen seiner Antwort nicht rechtzeitig gesendet.</translation>
    </message>
    <message>
        <source>The server sent the page in a coding that is not known.</source>
        <translation>Der Server hat die Seite in einer unbekannten Kodierung gesendet.</translation>
    </message>
    <message>
        <source>The page is too long.</source>
        <translation>Die Seite ist zu lang.</translation>
    </message>
    <message>
        <source>The proxy server asks for a user name and a password.</source>
        <translation>Der Proxyserver verlangt einen Benutzernamen und ein Passwort.</translation>
    </message>
    <message>
        <source>The proxy server refused the user name or the password.</source>
        <translation>Der Proxyserver hat den Benutzernamen oder das Passwort abgelehnt.</translation>
    </message>
    <message>
        <source>The proxy server answered %1.</source>
        <translation>Der Proxyserver hat mit „%1“ geantwortet.</translation>
    </message>
    <message>
        <source>This is not a valid URL.</source>
        <translation>Das ist keine gültige URL.</translation>
    </message>
    <message>
        <source>It was cancelled.</source>
        <translation>Abgebrochen.</translation>
    </message>
</context>
<context>
    <name>PreferencesWindow</name>
    <message>
        <source>Preferences</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>Shows the queue whenever URLs come in.</source>
        <translation>Zeigt die Warteschlange, sobald neue URLs da sind.</translation>
    </message>
    <message>
        <source>Puts the status window in front of the windows of other programs too. Counts only while the status window is brought forward.</source>
        <translation>Bringt das Statusfenster auch vor die Fenster anderer Programme. Gilt nur, solange das Statusfenster angezeigt wird.</translation>
    </message>
    <message>
        <source>In front of other &amp;programs</source>
        <translation>Vor anderen &amp;Programmen</translation>
    </message>
    <message>
        <source>&amp;Folder:</source>
        <translation>&amp;Ordner:</translation>
    </message>
    <message>
        <source>Destination folder</source>
        <translation>Zielordner</translation>
    </message>
    <message>
        <source>Pick the folder that files are downloaded into. It is found again after it was moved or renamed.</source>
        <translation>Wählen Sie den Ordner aus, in den Dateien heruntergeladen werden. Er wird auch wiedergefunden, wenn er verschoben oder umbenannt wurde.</translation>
    </message>
    <message>
        <source>Choose the destination folder</source>
        <translation>Zielordner auswählen</translation>
    </message>
    <message>
        <source>C&amp;hoose…</source>
        <translation>Aus&amp;wählen&#xa0;…</translation>
    </message>
    <message>
        <source>Asks where to put the files whenever a download is started by hand. Without an answer the folder stays the same.</source>
        <translation>Fragt bei jedem von Hand gestarteten Download nach dem Zielordner. Ohne Antwort bleibt es beim bisherigen Ordner.</translation>
    </message>
    <message>
        <source>&amp;Ask for a folder each time</source>
        <translation>&amp;Jedes Mal nach dem Ordner fragen</translation>
    </message>
    <message>
        <source>Otherwise a new file gets a name that is free, and the old one stays.</source>
        <translation>Sonst erhält die neue Datei einen anderen Namen, und die alte bleibt erhalten.</translation>
    </message>
    <message>
        <source>&amp;Replace files of the same name</source>
        <translation>Gleichnamige Dateien &amp;ersetzen</translation>
    </message>
    <message>
        <source>Fil&amp;es fetched ahead of their turn:</source>
        <translation>Im &amp;Voraus geladene Dateien:</translation>
    </message>
    <message>
        <source>While a file is downloaded, so many more of the queue are already fetched, which saves waiting for servers. They still come one after the other.</source>
        <translation>So viele weitere Dateien werden schon im Voraus geladen, während eine heruntergeladen wird. Das spart Wartezeit; die Reihenfolge bleibt gleich.</translation>
    </message>
    <message>
        <source>Puts the URL into the comment of the file, which file managers show.</source>
        <translation>Trägt die URL in den Kommentar der Datei ein, den Dateiverwaltungen anzeigen.</translation>
    </message>
    <message>
        <source>&amp;Note on each file where it came from</source>
        <translation>&amp;Herkunft an jeder Datei vermerken</translation>
    </message>
    <message>
        <source>Moves the files of the destination folder into subfolders named after their extensions, such as “pdf”.</source>
        <translation>Verschiebt die Dateien des Zielordners in Unterordner, die nach den Endungen heißen, etwa „pdf“.</translation>
    </message>
    <message>
        <source>&amp;Sort files into subfolders when the queue is done</source>
        <translation>Dateien in &amp;Unterordner sortieren, wenn die Warteschlange leer ist</translation>
    </message>
    <message>
        <source>Writes a comment back where moving a file loses it. On this system moving keeps comments anyway.</source>
        <translation>Schreibt einen Kommentar zurück, wo er beim Verschieben verloren ginge. Auf diesem System bleibt er beim Verschieben ohnehin erhalten.</translation>
    </message>
    <message>
        <source>&amp;Keep the comments of files that are sorted</source>
        <translation>&amp;Kommentare beim Sortieren erhalten</translation>
    </message>
    <message>
        <source>Notices</source>
        <translation>Benachrichtigungen</translation>
    </message>
    <message>
        <source>Also when a download failed. Only while no window of Quillforth is in front.</source>
        <translation>Auch wenn ein Download fehlgeschlagen ist. Nur solange kein Fenster von Quillforth im Vordergrund ist.</translation>
    </message>
    <message>
        <source>Show a no&amp;tification when the queue is done</source>
        <translation>&amp;Benachrichtigen, wenn die Warteschlange leer ist</translation>
    </message>
    <message>
        <source>P&amp;lay a sound when the queue is done</source>
        <translation>K&amp;lang abspielen, wenn die Warteschlange leer ist</translation>
    </message>
    <message>
        <source>Without it failures are only listed under Failed.</source>
        <translation>Sonst stehen Fehler nur unter „Fehlgeschlagen“.</translation>
    </message>
    <message>
        <source>Show a &amp;message for each download that fails</source>
        <translation>&amp;Meldung für jeden fehlgeschlagenen Download anzeigen</translation>
    </message>
    <message>
        <source>Only while Firefox does not say its address otherwise. What is on the clipboard is lost. Not possible on Wayland.</source>
        <translation>Nur wenn sich die Adresse von Firefox nicht anders lesen lässt. Der Inhalt der Zwischenablage geht verloren. Unter Wayland nicht möglich.</translation>
    </message>
    <message>
        <source>All&amp;ow keystrokes to copy the address of Firefox</source>
        <translation>&amp;Tastendrücke zum Kopieren der Adresse von Firefox erlauben</translation>
    </message>
    <message>
        <source>What to switch on so that a browser says its address, and a button that does it</source>
        <translation>Zeigt, wie man einen Browser dazu bringt, seine Adresse preiszugeben</translation>
    </message>
    <message>
        <source>&amp;What Browsers Need…</source>
        <translation>Browser ei&amp;nrichten …</translation>
    </message>
    <message>
        <source>Some servers give their files only to those who come from their pages. Another server is told no more than where the page is from.</source>
        <translation>Manche Server liefern ihre Dateien nur, wenn man von ihren eigenen Seiten kommt. Fremde Server erfahren nur, von welchem Server die Seite stammt.</translation>
    </message>
    <message>
        <source>Tell the ser&amp;ver on which page a file was found</source>
        <translation>&amp;Dem Server die Seite mitteilen, auf der eine Datei verlinkt war</translation>
    </message>
    <message>
        <source>General</source>
        <translation>Allgemein</translation>
    </message>
    <message>
        <source>Files</source>
        <translation>Dateien</translation>
    </message>
    <message>
        <source>Browsers</source>
        <translation>Browser</translation>
    </message>
    <message>
        <source>&amp;Bring the status window forward when URLs come in</source>
        <translation>&amp;Statusfenster bei neuen URLs anzeigen</translation>
    </message>
    <message>
        <source>Shows the links of each page before they join the queue. Only those that are ticked do.</source>
        <translation>Zeigt die Links jeder Seite, bevor sie in die Warteschlange kommen. Nur die angekreuzten werden eingereiht.</translation>
    </message>
    <message>
        <source>&amp;Choose which links of a page are queued</source>
        <translation>&amp;Auswählen, welche Links einer Seite eingereiht werden</translation>
    </message>
</context>
<context>
    <name>QDialog</name>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>and %1 more</source>
        <translation>und %1 weitere</translation>
    </message>
</context>
<context>
    <name>StatusWindow</name>
    <message>
        <source>Destination:</source>
        <translation>Zielordner:</translation>
    </message>
    <message>
        <source>Folder that downloads go into</source>
        <translation>Zielordner</translation>
    </message>
    <message>
        <source>&amp;Choose…</source>
        <translation>Auswäh&amp;len&#xa0;…</translation>
    </message>
    <message>
        <source>Choose the folder that downloads go into</source>
        <translation>Den Zielordner auswählen</translation>
    </message>
    <message>
        <source>&amp;Open Folder</source>
        <translation>Ordner ö&amp;ffnen</translation>
    </message>
    <message>
        <source>Queued URLs</source>
        <translation>URLs in der Warteschlange</translation>
    </message>
    <message>
        <source>URLs that wait</source>
        <translation>Wartende URLs</translation>
    </message>
    <message>
        <source>Queue the links of a page</source>
        <translation>Die Links einer Seite in die Warteschlange stellen</translation>
    </message>
    <message>
        <source>Go on with the next URL in the queue</source>
        <translation>Mit der nächsten URL der Warteschlange weitermachen</translation>
    </message>
    <message>
        <source>&amp;Delete</source>
        <translation>Lös&amp;chen</translation>
    </message>
    <message>
        <source>Take the selected URLs out of the queue</source>
        <translation>Die ausgewählten URLs aus der Warteschlange nehmen</translation>
    </message>
    <message>
        <source>URL that is being downloaded</source>
        <translation>URL, die gerade heruntergeladen wird</translation>
    </message>
    <message>
        <source>Progress of the download</source>
        <translation>Fortschritt des Downloads</translation>
    </message>
    <message>
        <source>Ca&amp;ncel</source>
        <translation>Abb&amp;rechen</translation>
    </message>
    <message>
        <source>Give up the file that is being downloaded</source>
        <translation>Den laufenden Download abbrechen</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>&amp;Bearbeiten</translation>
    </message>
    <message>
        <source>&amp;Queue</source>
        <translation>&amp;Warteschlange</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <source>Get URL from &amp;Browser</source>
        <translation>URL aus dem Bro&amp;wser holen</translation>
    </message>
    <message>
        <source>Download what the web browser shows</source>
        <translation>Die im Browser gezeigte Seite oder Datei herunterladen</translation>
    </message>
    <message>
        <source>Open &amp;Link File…</source>
        <translation>&amp;Linkdatei öffnen&#xa0;…</translation>
    </message>
    <message>
        <source>Download what a link file names</source>
        <translation>Das Ziel einer Linkdatei herunterladen</translation>
    </message>
    <message>
        <source>&amp;Choose Destination…</source>
        <translation>Zielordner &amp;auswählen&#xa0;…</translation>
    </message>
    <message>
        <source>Open &amp;Destination</source>
        <translation>&amp;Zielordner öffnen</translation>
    </message>
    <message>
        <source>Show the folder that downloads go into</source>
        <translation>Den Zielordner öffnen</translation>
    </message>
    <message>
        <source>&amp;Aggregate…</source>
        <translation>Ein&amp;sortieren&#xa0;…</translation>
    </message>
    <message>
        <source>Sort the files in the destination folder into subfolders by extension</source>
        <translation>Die Dateien im Zielordner nach ihrer Endung in Unterordner sortieren</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>&amp;Paste URL</source>
        <translation>URL &amp;einfügen</translation>
    </message>
    <message>
        <source>&amp;Copy URL</source>
        <translation>URL &amp;kopieren</translation>
    </message>
    <message>
        <source>Copy the selected URLs</source>
        <translation>Die ausgewählten URLs kopieren</translation>
    </message>
    <message>
        <source>Select &amp;All</source>
        <translation>Alles aus&amp;wählen</translation>
    </message>
    <message>
        <source>P&amp;references…</source>
        <translation>E&amp;instellungen&#xa0;…</translation>
    </message>
    <message>
        <source>Cancel D&amp;ownload</source>
        <translation>&amp;Download abbrechen</translation>
    </message>
    <message>
        <source>&amp;About Quillforth</source>
        <translation>Ü&amp;ber Quillforth</translation>
    </message>
    <message>
        <source>Take the URLs from the clipboard, one a line</source>
        <translation>Die URLs aus der Zwischenablage nehmen, eine je Zeile</translation>
    </message>
    <message>
        <source>List of URLs that is shown</source>
        <translation>Liste der URLs</translation>
    </message>
    <message>
        <source>Finished downloads</source>
        <translation>Fertige Downloads</translation>
    </message>
    <message>
        <source>Failed URLs</source>
        <translation>Fehlgeschlagene URLs</translation>
    </message>
    <message>
        <source>What came of the URLs</source>
        <translation>Ergebnis der Downloads</translation>
    </message>
    <message>
        <source>S&amp;tart Next</source>
        <translation>&amp;Nächste starten</translation>
    </message>
    <message>
        <source>O&amp;pen</source>
        <translation>&amp;Öffnen</translation>
    </message>
    <message>
        <source>Open the selected file</source>
        <translation>Die ausgewählte Datei öffnen</translation>
    </message>
    <message>
        <source>Sho&amp;w in Folder</source>
        <translation>Im Ordner &amp;zeigen</translation>
    </message>
    <message>
        <source>Show the selected file in its folder</source>
        <translation>Die ausgewählte Datei in ihrem Ordner zeigen</translation>
    </message>
    <message>
        <source>&amp;Remove</source>
        <translation>En&amp;tfernen</translation>
    </message>
    <message>
        <source>Take the selected rows out of this list; files stay where they are</source>
        <translation>Die ausgewählten Zeilen aus dieser Liste nehmen; Dateien bleiben, wo sie sind</translation>
    </message>
    <message>
        <source>Queue A&amp;gain</source>
        <translation>Erne&amp;ut einreihen</translation>
    </message>
    <message>
        <source>Queue the selected URLs again, or all of them when none is selected</source>
        <translation>Die ausgewählten URLs erneut in die Warteschlange stellen, oder alle, wenn keine ausgewählt ist</translation>
    </message>
    <message>
        <source>Re&amp;move</source>
        <translation>Entf&amp;ernen</translation>
    </message>
    <message>
        <source>Start &amp;Next</source>
        <translation>&amp;Nächste starten</translation>
    </message>
    <message>
        <source>&amp;Queue Again</source>
        <translation>&amp;Erneut einreihen</translation>
    </message>
    <message>
        <source>&amp;Open</source>
        <translation>Ö&amp;ffnen</translation>
    </message>
    <message>
        <source>Show in &amp;Folder</source>
        <translation>Im Ordner &amp;zeigen</translation>
    </message>
    <message>
        <source>Remo&amp;ve from List</source>
        <translation>Aus der Liste &amp;nehmen</translation>
    </message>
    <message>
        <source>&amp;Add URLs…</source>
        <translation>URLs ein&amp;geben&#xa0;…</translation>
    </message>
    <message>
        <source>Type the URLs of pages and files</source>
        <translation>Die URLs von Seiten und Dateien eingeben</translation>
    </message>
    <message>
        <source>Add &amp;URLs…</source>
        <translation>&amp;URLs eingeben&#xa0;…</translation>
    </message>
    <message>
        <source>Ho&amp;ld</source>
        <translation>&amp;Anhalten</translation>
    </message>
    <message>
        <source>Start nothing more after the file that is being downloaded, and keep the queue</source>
        <translation>Nach der laufenden Datei nichts mehr beginnen und die Warteschlange behalten</translation>
    </message>
    <message>
        <source>&amp;Stop and Clear</source>
        <translation>Rest &amp;verwerfen</translation>
    </message>
    <message>
        <source>Stop after the file that is being downloaded, and throw the rest of the queue away</source>
        <translation>Nach der laufenden Datei aufhören und den Rest der Warteschlange verwerfen</translation>
    </message>
    <message>
        <source>What the program waits for, and how it stands</source>
        <translation>Worauf das Programm wartet, und wie es steht</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Give up just the page that is loaded, or the question what a URL is</source>
        <translation>Nur das Laden der Seite oder die Frage, was eine URL ist, abbrechen</translation>
    </message>
    <message>
        <source>&amp;Undo</source>
        <translation>&amp;Rückgängig</translation>
    </message>
    <message>
        <source>Bring back what the last command has thrown away, at the end of the queue</source>
        <translation>Was der letzte Befehl verworfen hat, ans Ende der Warteschlange zurückholen</translation>
    </message>
    <message>
        <source>C&amp;lear Queue</source>
        <translation>Warteschlange &amp;leeren</translation>
    </message>
    <message>
        <source>Throw all URLs of the queue away</source>
        <translation>Alle URLs der Warteschlange verwerfen</translation>
    </message>
    <message>
        <source>&amp;Hold</source>
        <translation>&amp;Anhalten</translation>
    </message>
    <message>
        <source>Cancel Loadin&amp;g</source>
        <translation>Laden a&amp;bbrechen</translation>
    </message>
    <message>
        <source>Show just the URLs that hold this text</source>
        <translation>Nur URLs mit diesem Text zeigen</translation>
    </message>
    <message>
        <source>Filter of the queue</source>
        <translation>Filter der Warteschlange</translation>
    </message>
    <message>
        <source>How much the filter shows</source>
        <translation>Wie viel der Filter zeigt</translation>
    </message>
    <message>
        <source>&amp;Save List…</source>
        <translation>Liste s&amp;peichern …</translation>
    </message>
    <message>
        <source>Write the URLs that wait and those that failed to a file, one a line</source>
        <translation>Die wartenden und die fehlgeschlagenen URLs in eine Datei schreiben, eine je Zeile</translation>
    </message>
    <message>
        <source>&amp;Filter…</source>
        <translation>&amp;Filtern …</translation>
    </message>
    <message>
        <source>Show just some of the URLs that wait</source>
        <translation>Nur einige der wartenden URLs zeigen</translation>
    </message>
    <message>
        <source>Re&amp;move Duplicates</source>
        <translation>Do&amp;ppelte entfernen</translation>
    </message>
    <message>
        <source>Take URLs out of the queue that wait there already</source>
        <translation>URLs aus der Warteschlange nehmen, die dort schon warten</translation>
    </message>
    <message>
        <source>&amp;Manual</source>
        <translation>&amp;Anleitung</translation>
    </message>
    <message>
        <source>&amp;Import Page…</source>
        <translation>Seite &amp;importieren&#xa0;…</translation>
    </message>
</context>
<context>
    <name>quillforth::desktop::AddSheet</name>
    <message>
        <source>Add URLs</source>
        <translation>URLs eingeben</translation>
    </message>
    <message>
        <source>&amp;URLs of pages and files, one a line:</source>
        <translation>&amp;URLs von Seiten und Dateien, eine je Zeile:</translation>
    </message>
    <message>
        <source>URLs of pages and files</source>
        <translation>URLs von Seiten und Dateien</translation>
    </message>
    <message>
        <source>&amp;Add</source>
        <translation>&amp;Übernehmen</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>&amp;Abbrechen</translation>
    </message>
    <message>
        <source>That is too much at a time.</source>
        <translation>Das sind zu viele auf einmal.</translation>
    </message>
    <message>
        <source>Lines that are taken for hosts:</source>
        <translation>Zeilen, die als Server gelten:</translation>
    </message>
    <message>
        <source>and %1 more</source>
        <translation>und %1 weitere</translation>
    </message>
    <message>
        <source>&amp;Open List…</source>
        <translation>&amp;Liste öffnen …</translation>
    </message>
    <message>
        <source>Add the lines of a file</source>
        <translation>Die Zeilen einer Datei hinzufügen</translation>
    </message>
    <message>
        <source>Open List</source>
        <translation>Liste öffnen</translation>
    </message>
    <message>
        <source>The list could not be read: %1</source>
        <translation>Die Liste konnte nicht gelesen werden: %1</translation>
    </message>
    <message>
        <source>Not taken:</source>
        <translation>Nicht übernommen:</translation>
    </message>
</context>
<context>
    <name>quillforth::desktop::AuthenticationSheet</name>
    <message>
        <source>The proxy server %1 asks for a user name and a password.</source>
        <translation>Der Proxyserver %1 verlangt einen Benutzernamen und ein Passwort.</translation>
    </message>
    <message>
        <source>The proxy server %1 asks for a user name and a password for &quot;%2&quot;.</source>
        <translation>Der Proxyserver %1 verlangt einen Benutzernamen und ein Passwort für „%2“.</translation>
    </message>
    <message>
        <source>The server %1 asks for a user name and a password.</source>
        <translation>Der Server %1 verlangt einen Benutzernamen und ein Passwort.</translation>
    </message>
    <message>
        <source>The server %1 asks for a user name and a password for &quot;%2&quot;.</source>
        <translation>Der Server %1 verlangt einen Benutzernamen und ein Passwort für „%2“.</translation>
    </message>
    <message>
        <source>The user name or the password was refused.</source>
        <translation>Der Benutzername oder das Passwort wurde abgelehnt.</translation>
    </message>
    <message>
        <source>&amp;User name:</source>
        <translation>&amp;Benutzername:</translation>
    </message>
    <message>
        <source>&amp;Password:</source>
        <translation>&amp;Passwort:</translation>
    </message>
</context>
<context>
    <name>quillforth::desktop::BusService</name>
    <message>
        <source>Download %1 with Quillforth</source>
        <translation>%1 mit Quillforth herunterladen</translation>
    </message>
</context>
<context>
    <name>quillforth::desktop::ChooseSheet</name>
    <message>
        <source>Choose Links</source>
        <translation>Links auswählen</translation>
    </message>
    <message>
        <source>Links of %1</source>
        <translation>Links von %1</translation>
    </message>
    <message>
        <source>Show just the URLs that hold this text</source>
        <translation>Nur URLs mit diesem Text zeigen</translation>
    </message>
    <message>
        <source>Filter of the links</source>
        <translation>Filter der Links</translation>
    </message>
    <message>
        <source>Links of the page</source>
        <translation>Links der Seite</translation>
    </message>
    <message>
        <source>No URL passes the filter.</source>
        <translation>Keine URL passt zum Filter.</translation>
    </message>
    <message>
        <source>&amp;Queue Ticked</source>
        <translation>Angekreuzte &amp;einreihen</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>&amp;Abbrechen</translation>
    </message>
    <message>
        <source>Queue none of them</source>
        <translation>Keinen davon einreihen</translation>
    </message>
    <message>
        <source>&amp;Tick All</source>
        <translation>Alle an&amp;kreuzen</translation>
    </message>
    <message>
        <source>&amp;Untick All</source>
        <translation>Alle ab&amp;wählen</translation>
    </message>
    <message>
        <source>All links that the filter shows</source>
        <translation>Alle Links, die der Filter zeigt</translation>
    </message>
    <message>
        <source>Ticked: %1 of %2. Shown: %3.</source>
        <translation>Angekreuzt: %1 von %2. Gezeigt: %3.</translation>
    </message>
</context>
<context>
    <name>quillforth::desktop::CompletionNotice</name>
    <message>
        <source>A download failed</source>
        <translation>Ein Download ist fehlgeschlagen</translation>
    </message>
    <message>
        <source>Files downloaded: %1</source>
        <translation>Heruntergeladene Dateien: %1</translation>
    </message>
    <message>
        <source>The queue is done</source>
        <translation>Die Warteschlange ist abgearbeitet</translation>
    </message>
    <message>
        <source>The queue is done, with failures</source>
        <translation>Die Warteschlange ist mit Fehlern abgearbeitet</translation>
    </message>
    <message>
        <source>Failed downloads: %1</source>
        <translation>Fehlgeschlagene Downloads: %1</translation>
    </message>
</context>
<context>
    <name>quillforth::desktop::DesktopNotification</name>
    <message>
        <source>Show</source>
        <translation>Anzeigen</translation>
    </message>
</context>
<context>
    <name>quillforth::desktop::FailedModel</name>
    <message>
        <source>URL</source>
        <translation>URL</translation>
    </message>
    <message>
        <source>Reason</source>
        <translation>Grund</translation>
    </message>
    <message>
        <source>Found On</source>
        <translation>Gefunden auf</translation>
    </message>
</context>
<context>
    <name>quillforth::desktop::FinishedModel</name>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Größe</translation>
    </message>
    <message>
        <source>Folder</source>
        <translation>Ordner</translation>
    </message>
    <message>
        <source>Source</source>
        <translation>Quelle</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Zeit</translation>
    </message>
</context>
<context>
    <name>quillforth::desktop::ImportWindow</name>
    <message>
        <source>Waiting for its turn…</source>
        <translation>Der Import wartet, bis er an der Reihe ist …</translation>
    </message>
    <message>
        <source>Loading the page…</source>
        <translation>Die Seite wird geladen …</translation>
    </message>
    <message>
        <source>&amp;Import</source>
        <translation>&amp;Importieren</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>&amp;Abbrechen</translation>
    </message>
</context>
<context>
    <name>quillforth::desktop::KindsButton</name>
    <message>
        <source>Kinds of URLs that are shown</source>
        <translation>Arten von URLs, die gezeigt werden</translation>
    </message>
    <message>
        <source>&amp;Pictures</source>
        <translation>&amp;Bilder</translation>
    </message>
    <message>
        <source>&amp;Sound</source>
        <translation>&amp;Ton</translation>
    </message>
    <message>
        <source>&amp;Film</source>
        <translation>&amp;Film</translation>
    </message>
    <message>
        <source>&amp;Archives</source>
        <translation>&amp;Archive</translation>
    </message>
    <message>
        <source>&amp;Documents</source>
        <translation>&amp;Dokumente</translation>
    </message>
    <message>
        <source>Pa&amp;ges</source>
        <translation>&amp;Seiten</translation>
    </message>
    <message>
        <source>All Kinds</source>
        <translation>Alle Arten</translation>
    </message>
    <message>
        <source>%1 Kinds</source>
        <translation>%1 Arten</translation>
    </message>
</context>
<context>
    <name>quillforth::desktop::Outcomes</name>
    <message>
        <source>What has arrived will be listed here</source>
        <translation>Hier erscheinen fertige Downloads</translation>
    </message>
    <message>
        <source>What fails will be listed here</source>
        <translation>Hier erscheinen fehlgeschlagene Downloads</translation>
    </message>
    <message>
        <source>is not a valid URL; Start Next goes on</source>
        <translation>ist keine gültige URL; „Nächste starten“ macht weiter</translation>
    </message>
    <message>
        <source>Waiting (%1)</source>
        <translation>Wartend (%1)</translation>
    </message>
    <message>
        <source>Finished (%1)</source>
        <translation>Fertig (%1)</translation>
    </message>
    <message>
        <source>Failed (%1)</source>
        <translation>Fehlgeschlagen (%1)</translation>
    </message>
    <message>
        <source>%1 done, %2 failed</source>
        <translation>%1 fertig, %2 Fehler</translation>
    </message>
    <message>
        <source> (the oldest %1 are not listed any more)</source>
        <translation> (die ältesten %1 stehen nicht mehr in der Liste)</translation>
    </message>
</context>
<context>
    <name>quillforth::desktop::PreferencesWindow</name>
    <message>
        <source>The change could not be saved in %1.</source>
        <translation>Die Änderung konnte nicht in %1 gespeichert werden.</translation>
    </message>
    <message>
        <source>Switch Accessibility On</source>
        <translation>Barrierefreiheit einschalten</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>Accessibility could not be switched on.</source>
        <translation>Die Barrierefreiheit konnte nicht eingeschaltet werden.</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
</context>
<context>
    <name>quillforth::desktop::QueueModel</name>
    <message>
        <source>Queued URLs</source>
        <translation>URLs in der Warteschlange</translation>
    </message>
</context>
<context>
    <name>quillforth::desktop::QueueTable</name>
    <message>
        <source>No URL passes the filter.</source>
        <translation>Keine URL passt zum Filter.</translation>
    </message>
</context>
<context>
    <name>quillforth::desktop::StatusWindow</name>
    <message>
        <source>Not everything could be taken.</source>
        <translation>Nicht alles konnte übernommen werden.</translation>
    </message>
    <message>
        <source>Neither a file nor an http, https or ftp URL:</source>
        <translation>Weder eine Datei noch eine Adresse mit http, https oder ftp:</translation>
    </message>
    <message>
        <source>Open Link File</source>
        <translation>Linkdatei öffnen</translation>
    </message>
    <message>
        <source>Quit Quillforth?</source>
        <translation>Quillforth beenden?</translation>
    </message>
    <message>
        <source>Quit</source>
        <translation>Beenden</translation>
    </message>
    <message>
        <source>Quillforth %1</source>
        <translation>Quillforth %1</translation>
    </message>
    <message>
        <source>Downloads files from the web in batches.</source>
        <translation>Lädt Dateien stapelweise aus dem Web herunter.</translation>
    </message>
    <message>
        <source>That is too much at a time.</source>
        <translation>Das sind zu viele auf einmal.</translation>
    </message>
    <message>
        <source>Nothing was taken. Paste fewer lines, or wait until those before are taken.</source>
        <translation>Nichts wurde übernommen. Fügen Sie weniger Zeilen ein, oder warten Sie, bis die vorigen übernommen sind.</translation>
    </message>
    <message>
        <source>Paste takes http, https and ftp URLs, one a line.</source>
        <translation>Eingefügt werden URLs mit http, https und ftp, eine je Zeile.</translation>
    </message>
    <message>
        <source>The clipboard holds none.</source>
        <translation>Die Zwischenablage enthält keine.</translation>
    </message>
    <message>
        <source>Not taken:</source>
        <translation>Nicht übernommen:</translation>
    </message>
    <message>
        <source>The page has no links.</source>
        <translation>Die Seite hat keine Links.</translation>
    </message>
    <message>
        <source>&amp;Undo Clear</source>
        <translation>Leeren &amp;rückgängig machen</translation>
    </message>
    <message>
        <source>&amp;Undo Stop</source>
        <translation>Verwerfen &amp;rückgängig machen</translation>
    </message>
    <message>
        <source>&amp;Undo Import</source>
        <translation>Import &amp;rückgängig machen</translation>
    </message>
    <message>
        <source>&amp;Undo Delete</source>
        <translation>Löschen &amp;rückgängig machen</translation>
    </message>
    <message>
        <source>&amp;Continue</source>
        <translation>&amp;Weiter</translation>
    </message>
    <message>
        <source>&amp;Hold</source>
        <translation>&amp;Anhalten</translation>
    </message>
    <message>
        <source>Contin&amp;ue</source>
        <translation>W&amp;eiter</translation>
    </message>
    <message>
        <source>Ho&amp;ld</source>
        <translation>&amp;Anhalten</translation>
    </message>
    <message>
        <source>On hold: nothing more is started until you press Continue.</source>
        <translation>Angehalten: Bis Sie auf „Weiter“ klicken, beginnt nichts mehr.</translation>
    </message>
    <message>
        <source>&amp;Undo</source>
        <translation>&amp;Rückgängig</translation>
    </message>
    <message>
        <source>What is under way will be broken off.</source>
        <translation>Was gerade läuft, wird abgebrochen.</translation>
    </message>
    <message>
        <source>URLs that will be lost: %1</source>
        <translation>URLs, die verloren gehen: %1</translation>
    </message>
    <message>
        <source>Stay</source>
        <translation>Bleiben</translation>
    </message>
    <message>
        <source>Free software under the MIT licence.</source>
        <translation>Freie Software unter der MIT-Lizenz.</translation>
    </message>
    <message>
        <source>There is no program here to show the manual with.</source>
        <translation>Hier ist kein Programm, das die Anleitung zeigt.</translation>
    </message>
    <message>
        <source>A terminal shows it with: man quillforth</source>
        <translation>Ein Terminal zeigt sie mit: man quillforth</translation>
    </message>
    <message>
        <source>(%1 of %2)</source>
        <translation>(%1 von %2)</translation>
    </message>
    <message>
        <source>%1 %</source>
        <translation>%1 %</translation>
    </message>
    <message>
        <source>&amp;Undo Remove Duplicates</source>
        <translation>Entfernen der Doppelten &amp;rückgängig machen</translation>
    </message>
    <message>
        <source>The list could not be saved.</source>
        <translation>Die Liste konnte nicht gespeichert werden.</translation>
    </message>
    <message>
        <source>Save List</source>
        <translation>Liste speichern</translation>
    </message>
    <message>
        <source>%1 of %2 shown</source>
        <translation>%1 von %2 zu sehen</translation>
    </message>
    <message>
        <source>Nothing will be lost.</source>
        <translation>Nichts geht verloren.</translation>
    </message>
    <message>
        <source>Drop or paste URLs here</source>
        <translation>URLs hierher ziehen oder einfügen</translation>
    </message>
    <message>
        <source>The work has ended. Failed: %1 of %2.</source>
        <translation>Die Arbeit ist beendet. Fehlgeschlagen: %1 von %2.</translation>
    </message>
    <message>
        <source>%1 bytes</source>
        <translation>%1 Byte</translation>
    </message>
    <message>
        <source>%1 of %2 bytes</source>
        <translation>%1 von %2 Byte</translation>
    </message>
    <message>
        <source>No links on %1.</source>
        <translation>Keine Links auf %1.</translation>
    </message>
    <message>
        <source>Import has emptied the queue; Undo brings it back.</source>
        <translation>Der Import hat die Warteschlange geleert; Rückgängig bringt sie zurück.</translation>
    </message>
</context>
<context>
    <name>quillforth::desktop::WorkLine</name>
    <message>
        <source>Loading %1</source>
        <translation>Lädt %1</translation>
    </message>
    <message>
        <source>Asking %1 what it is</source>
        <translation>Fragt %1, was es ist</translation>
    </message>
</context>
</TS>
