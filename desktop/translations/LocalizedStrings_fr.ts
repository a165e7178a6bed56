<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr_FR" sourcelanguage="en">
<context>
    <name>ImportWindow</name>
    <message>
        <source>Import URL</source>
        <translation>Importer une URL</translation>
    </message>
    <message>
        <source>&amp;URL of a web page. Its links replace the queue:</source>
        <translation>&amp;URL d’une page web. Ses liens remplacent la file d’attente&#xa0;:</translation>
    </message>
    <message>
        <source>The page is fetched, and every link in it is queued. &quot;http://&quot; may be left out.</source>
        <translation>La page est chargée et chacun de ses liens est mis en file d’attente. «&#xa0;http://&#xa0;» peut être omis.</translation>
    </message>
    <message>
        <source>URL of a web page</source>
        <translation>URL d’une page web</translation>
    </message>
</context>
<context>
    <name>LocalizedStrings</name>
    <message>
        <source>Are you sure you want to aggregate the files in &quot;%@&quot;?</source>
        <translation>Voulez-vous vraiment ranger les fichiers de «&#xa0;%@&#xa0;» dans des sous-dossiers par extension&#x202f;?</translation>
    </message>
    <message>
        <source>This process can not be undone.</source>
        <translation>Cette opération est irréversible.</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Annuler</translation>
    </message>
    <message>
        <source>Go to &quot;%@&quot;</source>
        <translation>Ouvrir «&#xa0;%@&#xa0;»</translation>
    </message>
    <message>
        <source>Choose a Destination Folder</source>
        <translation>Choisir un dossier de destination</translation>
    </message>
    <message>
        <source>Choose</source>
        <translation>Choisir</translation>
    </message>
    <message>
        <source>Choose destination folder</source>
        <translation>Choisissez le dossier de destination</translation>
    </message>
    <message>
        <source>An error occured during download.</source>
        <translation>Une erreur s’est produite pendant le téléchargement.</translation>
    </message>
    <message>
        <source>You are not connected to the Internet.</source>
        <translation>Vous n’êtes pas connecté à Internet.</translation>
    </message>
    <message>
        <source>Do you want to run Network Diagnostics?</source>
        <translation>Voulez-vous lancer le diagnostic réseau&#x202f;?</translation>
    </message>
    <message>
        <source>No</source>
        <translation>Non</translation>
    </message>
    <message>
        <source>Done!</source>
        <translation>Terminé&#x202f;!</translation>
    </message>
    <message>
        <source>Download Failed</source>
        <translation>Échec du téléchargement</translation>
    </message>
    <message>
        <source>hr</source>
        <translation>h</translation>
    </message>
    <message>
        <source>hrs</source>
        <translation>h</translation>
    </message>
    <message>
        <source>min</source>
        <translation>min</translation>
    </message>
    <message>
        <source>mins</source>
        <translation>min</translation>
    </message>
    <message>
        <source>sec</source>
        <translation>s</translation>
    </message>
    <message>
        <source>secs</source>
        <translation>s</translation>
    </message>
    <message>
        <source>0 secs</source>
        <translation>0 s</translation>
    </message>
    <message>
        <source>Elapsed: </source>
        <translation>Écoulé&#xa0;: </translation>
    </message>
    <message>
        <source>, Remaining: </source>
        <translation>, restant&#xa0;: </translation>
    </message>
    <message>
        <source>(%@ of %@ bytes</source>
        <translation>(%@ sur %@ octets</translation>
    </message>
    <message>
        <source>%d percent, %@, %s)</source>
        <translation>%d pour cent, %@, %s)</translation>
    </message>
    <message>
        <source>%d urls queued</source>
        <translation>URL en attente&#xa0;: %d</translation>
    </message>
    <message>
        <source>The server asks for a user name and a password.</source>
        <translation>Le serveur demande un nom d’utilisateur et un mot de passe.</translation>
    </message>
    <message>
        <source>The header of the server&apos;s answer is too long.</source>
        <translation>L’en-tête de la réponse du serveur est trop long.</translation>
    </message>
    <message>
        <source>The server announced an impossible length.</source>
        <translation>Le serveur a annoncé une longueur impossible.</translation>
    </message>
    <message>
        <source>This is a folder, not a file.</source>
        <translation>Ceci est un dossier, pas un fichier.</translation>
    </message>
    <message>
        <source>There is not enough memory for the transfer.</source>
        <translation>Il n’y a pas assez de mémoire pour le transfert.</translation>
    </message>
    <message>
        <source>The server has sent nothing for too long.</source>
        <translation>Délai dépassé : le serveur n’envoie plus rien.</translation>
    </message>
    <message>
        <source>The URL is malformed.</source>
        <translation>L’URL est mal formée.</translation>
    </message>
    <message>
        <source>The proxy was not found.</source>
        <translation>Le proxy est introuvable.</translation>
    </message>
    <message>
        <source>The server was not found.</source>
        <translation>Le serveur est introuvable.</translation>
    </message>
    <message>
        <source>The server cannot be reached.</source>
        <translation>Le serveur est injoignable.</translation>
    </message>
    <message>
        <source>The server&apos;s answer cannot be understood.</source>
        <translation>La réponse du serveur est incompréhensible.</translation>
    </message>
    <message>
        <source>The server refused access.</source>
        <translation>Le serveur a refusé l’accès.</translation>
    </message>
    <message>
        <source>The server sent less than the whole file.</source>
        <translation>Le serveur n’a pas envoyé le fichier en entier.</translation>
    </message>
    <message>
        <source>The server refused to send the file.</source>
        <translation>Le serveur a refusé d’envoyer le fichier.</translation>
    </message>
    <message>
        <source>The server took too long.</source>
        <translation>Délai dépassé : le serveur a mis trop de temps.</translation>
    </message>
    <message>
        <source>No secure connection to the server could be made.</source>
        <translation>Aucune connexion sécurisée avec le serveur n’a pu être établie.</translation>
    </message>
    <message>
        <source>The server redirected too many times.</source>
        <translation>Le serveur a fait trop de redirections.</translation>
    </message>
    <message>
        <source>The server closed the connection without an answer.</source>
        <translation>Le serveur a fermé la connexion sans répondre.</translation>
    </message>
    <message>
        <source>The connection to the server broke off.</source>
        <translation>La connexion avec le serveur a été interrompue.</translation>
    </message>
    <message>
        <source>The server&apos;s answer broke off or was damaged.</source>
        <translation>La réponse du serveur a été interrompue ou endommagée.</translation>
    </message>
    <message>
        <source>The server&apos;s certificate is not trusted.</source>
        <translation>Le certificat du serveur n’est pas digne de confiance.</translation>
    </message>
    <message>
        <source>The server refused the user name or the password.</source>
        <translation>Le serveur a refusé le nom d’utilisateur ou le mot de passe.</translation>
    </message>
    <message>
        <source>The file of trusted certificates cannot be read.</source>
        <translation>Le fichier des certificats de confiance est illisible.</translation>
    </message>
    <message>
        <source>The server has no such file.</source>
        <translation>Ce fichier n’existe pas sur le serveur.</translation>
    </message>
    <message>
        <source>The destination folder does not exist.</source>
        <translation>Le dossier de destination n’existe pas.</translation>
    </message>
    <message>
        <source>A folder has the name of the file.</source>
        <translation>Un dossier porte déjà le nom du fichier.</translation>
    </message>
    <message>
        <source>There is not enough space in the destination folder.</source>
        <translation>L’espace disponible dans le dossier de destination est insuffisant.</translation>
    </message>
    <message>
        <source>The destination folder is not writable.</source>
        <translation>Impossible d’écrire dans le dossier de destination.</translation>
    </message>
    <message>
        <source>The file is larger than the destination folder can hold.</source>
        <translation>Le fichier dépasse la taille admise par le dossier de destination.</translation>
    </message>
    <message>
        <source>The name of the file is too long for the destination folder.</source>
        <translation>Le nom du fichier est trop long pour le dossier de destination.</translation>
    </message>
    <message>
        <source>The server answered %1.</source>
        <translation>Le serveur a répondu «&#xa0;%1&#xa0;».</translation>
    </message>
    <message>
        <source>The server redirected to something other than http, https or ftp.</source>
        <translation>Le serveur a redirigé vers autre chose que http, https ou ftp.</translation>
    </message>
    <message>
        <source>The transfer failed: %1.</source>
        <translation>Le transfert a échoué&#xa0;: %1.</translation>
    </message>
    <message>
        <source>The file could not be written: %1.</source>
        <translation>Le fichier n’a pas pu être écrit&#xa0;: %1.</translation>
    </message>
    <message>
        <source>The unfinished file was removed or replaced by something else.</source>
        <translation>Le fichier inachevé a été supprimé ou remplacé par autre chose.</translation>
    </message>
    <message>
        <source>There is no destination folder for the file.</source>
        <translation>Il n’y a pas de dossier de destination pour le fichier.</translation>
    </message>
    <message>
        <source>Only http, https and ftp URLs can be downloaded.</source>
        <translation>Seules les URL http, https et ftp peuvent être téléchargées.</translation>
    </message>
    <message>
        <source>Browsers say their address only while accessibility is on for your session.</source>
        <translation>Les navigateurs n’indiquent leur adresse que si l’accessibilité est activée pour votre session.</translation>
    </message>
    <message>
        <source>Once accessibility is on, start Firefox again.</source>
        <translation>Une fois l’accessibilité activée, redémarrez Firefox.</translation>
    </message>
    <message>
        <source>Once accessibility is on, start the browser again. If it still says no address, start it with the option --force-renderer-accessibility.</source>
        <translation>Une fois l’accessibilité activée, redémarrez le navigateur. S’il n’indique toujours pas son adresse, lancez-le avec l’option --force-renderer-accessibility.</translation>
    </message>
    <message>
        <source>Once accessibility is on, start GNOME Web again.</source>
        <translation>Une fois l’accessibilité activée, redémarrez GNOME Web.</translation>
    </message>
    <message>
        <source>Could not retrieve browser URL.</source>
        <translation>Impossible d’obtenir l’URL du navigateur.</translation>
    </message>
    <message>
        <source>Either your browser is not running, doesn&apos;t have an open window, or it isn&apos;t supported by this feature.</source>
        <translation>Votre navigateur n’est pas ouvert, n’a pas de fenêtre ouverte, ou n’est pas pris en charge par cette fonction.</translation>
    </message>
    <message>
        <source>The server took too long to send the header of its answer.</source>
        <translation>Le serveur a mis trop de temps à envoyer l’en-tête de sa réponse.</translation>
    </message>
    <message>
        <source>The server sent the page in a coding that is not known.</source>
        <translation>Le serveur a envoyé la page dans un codage inconnu.</translation>
    </message>
    <message>
        <source>The page is too long.</source>
        <translation>La page est trop longue.</translation>
    </message>
    <message>
        <source>The proxy server asks for a user name and a password.</source>
        <translation>Le serveur mandataire demande un nom d’utilisateur et un mot de passe.</translation>
    </message>
    <message>
        <source>The proxy server refused the user name or the password.</source>
        <translation>Le serveur mandataire a refusé le nom d’utilisateur ou le mot de passe.</translation>
    </message>
    <message>
        <source>The proxy server answered %1.</source>
        <translation>Le serveur mandataire a répondu «&#xa0;%1&#xa0;».</translation>
    </message>
    <message>
        <source>This is not a valid URL.</source>
        <translation>Ce n’est pas une URL valide.</translation>
    </message>
    <message>
        <source>It was cancelled.</source>
        <translation>Annulé.</translation>
    </message>
</context>
<context>
    <name>PreferencesWindow</name>
    <message>
        <source>Preferences</source>
        <translation>Préférences</translation>
    </message>
    <message>
        <source>Shows the queue whenever URLs come in.</source>
        <translation>Affiche la file d’attente dès que des URL arrivent.</translation>
    </message>
    <message>
        <source>Puts the status window in front of the windows of other programs too. Counts only while the status window is brought forward.</source>
        <translation>Place la fenêtre d’état aussi devant celles des autres programmes. Sans effet si la fenêtre d’état n’est pas affichée.</translation>
    </message>
    <message>
        <source>In front of other &amp;programs</source>
        <translation>Devant les autres &amp;programmes</translation>
    </message>
    <message>
        <source>&amp;Folder:</source>
        <translation>&amp;Dossier&#xa0;:</translation>
    </message>
    <message>
        <source>Destination folder</source>
        <translation>Dossier de destination</translation>
    </message>
    <message>
        <source>Pick the folder that files are downloaded into. It is found again after it was moved or renamed.</source>
        <translation>Choisissez le dossier où les fichiers sont téléchargés. Il est retrouvé même s’il a été déplacé ou renommé.</translation>
    </message>
    <message>
        <source>Choose the destination folder</source>
        <translation>Choisir le dossier de destination</translation>
    </message>
    <message>
        <source>C&amp;hoose…</source>
        <translation>&amp;Choisir…</translation>
    </message>
    <message>
        <source>Asks where to put the files whenever a download is started by hand. Without an answer the folder stays the same.</source>
        <translation>Demande où placer les fichiers chaque fois qu’un téléchargement est lancé à la main. Sans réponse, le dossier reste le même.</translation>
    </message>
    <message>
        <source>&amp;Ask for a folder each time</source>
        <translation>Dem&amp;ander le dossier à chaque fois</translation>
    </message>
    <message>
        <source>Otherwise a new file gets a name that is free, and the old one stays.</source>
        <translation>Sinon, le nouveau fichier reçoit un nom libre et l’ancien est conservé.</translation>
    </message>
    <message>
        <source>&amp;Replace files of the same name</source>
        <translation>&amp;Remplacer les fichiers de même nom</translation>
    </message>
    <message>
        <source>Fil&amp;es fetched ahead of their turn:</source>
        <translation>F&amp;ichiers chargés à l’avance&#xa0;:</translation>
    </message>
    <message>
        <source>While a file is downloaded, so many more of the queue are already fetched, which saves waiting for servers. They still come one after the other.</source>
        <translation>Autant de fichiers suivants sont chargés à l’avance pendant un téléchargement. Cela réduit l’attente ; l’ordre ne change pas.</translation>
    </message>
    <message>
        <source>Puts the URL into the comment of the file, which file managers show.</source>
        <translation>Inscrit l’URL dans le commentaire du fichier, que les gestionnaires de fichiers affichent.</translation>
    </message>
    <message>
        <source>&amp;Note on each file where it came from</source>
        <translation>&amp;Noter l’origine de chaque fichier</translation>
    </message>
    <message>
        <source>Moves the files of the destination folder into subfolders named after their extensions, such as “pdf”.</source>
        <translation>Déplace les fichiers du dossier de destination dans des sous-dossiers qui portent le nom de leur extension, par exemple «&#xa0;pdf&#xa0;».</translation>
    </message>
    <message>
        <source>&amp;Sort files into subfolders when the queue is done</source>
        <translation>Ranger les fichiers dans des &amp;sous-dossiers quand la file est vide</translation>
    </message>
    <message>
        <source>Writes a comment back where moving a file loses it. On this system moving keeps comments anyway.</source>
        <translation>Réécrit le commentaire là où un déplacement le ferait perdre. Sur ce système, il est conservé de toute façon.</translation>
    </message>
    <message>
        <source>&amp;Keep the comments of files that are sorted</source>
        <translation>C&amp;onserver les commentaires des fichiers rangés</translation>
    </message>
    <message>
        <source>Notices</source>
        <translation>Notifications</translation>
    </message>
    <message>
        <source>Also when a download failed. Only while no window of Quillforth is in front.</source>
        <translation>Aussi quand un téléchargement a échoué. Seulement si aucune fenêtre de Quillforth n’est au premier plan.</translation>
    </message>
    <message>
        <source>Show a no&amp;tification when the queue is done</source>
        <translation>Afficher une no&amp;tification quand la file est vide</translation>
    </message>
    <message>
        <source>P&amp;lay a sound when the queue is done</source>
        <translation>&amp;Jouer un son quand la file est vide</translation>
    </message>
    <message>
        <source>Without it failures are only listed under Failed.</source>
        <translation>Sinon, les échecs figurent seulement sous « Échecs ».</translation>
    </message>
    <message>
        <source>Show a &amp;message for each download that fails</source>
        <translation>Afficher un &amp;message pour chaque téléchargement échoué</translation>
    </message>
    <message>
        <source>Only while Firefox does not say its address otherwise. What is on the clipboard is lost. Not possible on Wayland.</source>
        <translation>Seulement tant que Firefox n’indique pas son adresse autrement. Le contenu du presse-papiers est perdu. Impossible sous Wayland.</translation>
    </message>
    <message>
        <source>All&amp;ow keystrokes to copy the address of Firefox</source>
        <translation>A&amp;utoriser des frappes simulées pour copier l’adresse de Firefox</translation>
    </message>
    <message>
        <source>What to switch on so that a browser says its address, and a button that does it</source>
        <translation>Explique comment permettre la lecture de l’adresse d’un navigateur</translation>
    </message>
    <message>
        <source>&amp;What Browsers Need…</source>
        <translation>Configurer les na&amp;vigateurs…</translation>
    </message>
    <message>
        <source>Some servers give their files only to those who come from their pages. Another server is told no more than where the page is from.</source>
        <translation>Certains serveurs ne donnent leurs fichiers qu’à ceux qui viennent de leurs pages. Un autre serveur apprend seulement de quel serveur vient la page.</translation>
    </message>
    <message>
        <source>Tell the ser&amp;ver on which page a file was found</source>
        <translation>Indiquer au serveur que&amp;lle page contenait le lien</translation>
    </message>
    <message>
        <source>General</source>
        <translation>Général</translation>
    </message>
    <message>
        <source>Files</source>
        <translation>Fichiers</translation>
    </message>
    <message>
        <source>Browsers</source>
        <translation>Navigateurs</translation>
    </message>
    <message>
        <source>&amp;Bring the status window forward when URLs come in</source>
        <translation>A&amp;fficher la fenêtre d’état à l’arrivée d’URL</translation>
    </message>
    <message>
        <source>Shows the links of each page before they join the queue. Only those that are ticked do.</source>
        <translation>Montre les liens de chaque page avant qu’ils rejoignent la file. Seuls ceux qui sont cochés la rejoignent.</translation>
    </message>
    <message>
        <source>&amp;Choose which links of a page are queued</source>
        <translation>C&amp;hoisir les liens de chaque page à mettre en file</translation>
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
        <translation>et %1 autres</translation>
    </message>
</context>
<context>
    <name>StatusWindow</name>
    <message>
        <source>Destination:</source>
        <translation>Destination :</translation>
    </message>
    <message>
        <source>Folder that downloads go into</source>
        <translation>Dossier des téléchargements</translation>
    </message>
    <message>
        <source>&amp;Choose…</source>
        <translation>C&amp;hoisir…</translation>
    </message>
    <message>
        <source>Choose the folder that downloads go into</source>
        <translation>Choisir le dossier des téléchargements</translation>
    </message>
    <message>
        <source>&amp;Open Folder</source>
        <translation>&amp;Ouvrir le dossier</translation>
    </message>
    <message>
        <source>Queued URLs</source>
        <translation>URL en attente</translation>
    </message>
    <message>
        <source>URLs that wait</source>
        <translation>URL en attente</translation>
    </message>
    <message>
        <source>Queue the links of a page</source>
        <translation>Mettre en attente les liens d’une page</translation>
    </message>
    <message>
        <source>Go on with the next URL in the queue</source>
        <translation>Continuer avec l’URL suivante de la file d’attente</translation>
    </message>
    <message>
        <source>&amp;Delete</source>
        <translation>&amp;Supprimer</translation>
    </message>
    <message>
        <source>Take the selected URLs out of the queue</source>
        <translation>Retirer de la file d’attente les URL sélectionnées</translation>
    </message>
    <message>
        <source>URL that is being downloaded</source>
        <translation>URL en cours de téléchargement</translation>
    </message>
    <message>
        <source>Progress of the download</source>
        <translation>Progression du téléchargement</translation>
    </message>
    <message>
        <source>Ca&amp;ncel</source>
        <translation>A&amp;nnuler</translation>
    </message>
    <message>
        <source>Give up the file that is being downloaded</source>
        <translation>Abandonner le fichier en cours de téléchargement</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Fichier</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>É&amp;dition</translation>
    </message>
    <message>
        <source>&amp;Queue</source>
        <translation>Fi&amp;le d’attente</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Aide</translation>
    </message>
    <message>
        <source>Get URL from &amp;Browser</source>
        <translation>Prendre l’URL du &amp;navigateur</translation>
    </message>
    <message>
        <source>Download what the web browser shows</source>
        <translation>Télécharger la page ou le fichier affiché par le navigateur</translation>
    </message>
    <message>
        <source>Open &amp;Link File…</source>
        <translation>Ouvrir un fichier de &amp;lien…</translation>
    </message>
    <message>
        <source>Download what a link file names</source>
        <translation>Télécharger la cible d’un fichier de lien</translation>
    </message>
    <message>
        <source>&amp;Choose Destination…</source>
        <translation>&amp;Choisir la destination…</translation>
    </message>
    <message>
        <source>Open &amp;Destination</source>
        <translation>Ouvrir la &amp;destination</translation>
    </message>
    <message>
        <source>Show the folder that downloads go into</source>
        <translation>Montrer le dossier des téléchargements</translation>
    </message>
    <message>
        <source>&amp;Aggregate…</source>
        <translation>&amp;Trier les fichiers…</translation>
    </message>
    <message>
        <source>Sort the files in the destination folder into subfolders by extension</source>
        <translation>Trier les fichiers de la destination dans des sous-dossiers selon leur extension</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Quitter</translation>
    </message>
    <message>
        <source>&amp;Paste URL</source>
        <translation>Co&amp;ller l’URL</translation>
    </message>
    <message>
        <source>&amp;Copy URL</source>
        <translation>&amp;Copier l’URL</translation>
    </message>
    <message>
        <source>Copy the selected URLs</source>
        <translation>Copier les URL sélectionnées</translation>
    </message>
    <message>
        <source>Select &amp;All</source>
        <translation>&amp;Tout sélectionner</translation>
    </message>
    <message>
        <source>P&amp;references…</source>
        <translation>&amp;Préférences…</translation>
    </message>
    <message>
        <source>Cancel D&amp;ownload</source>
        <translation>Annuler le télé&amp;chargement</translation>
    </message>
    <message>
        <source>&amp;About Quillforth</source>
        <translation>À &amp;propos de Quillforth</translation>
    </message>
    <message>
        <source>Take the URLs from the clipboard, one a line</source>
        <translation>Prendre les URL du presse-papiers, une par ligne</translation>
    </message>
    <message>
        <source>List of URLs that is shown</source>
        <translation>Liste d’URL affichée</translation>
    </message>
    <message>
        <source>Finished downloads</source>
        <translation>Téléchargements terminés</translation>
    </message>
    <message>
        <source>Failed URLs</source>
        <translation>URL en échec</translation>
    </message>
    <message>
        <source>What came of the URLs</source>
        <translation>Résultat des téléchargements</translation>
    </message>
    <message>
        <source>S&amp;tart Next</source>
        <translation>&amp;URL suivante</translation>
    </message>
    <message>
        <source>O&amp;pen</source>
        <translation>Ou&amp;vrir</translation>
    </message>
    <message>
        <source>Open the selected file</source>
        <translation>Ouvrir le fichier sélectionné</translation>
    </message>
    <message>
        <source>Sho&amp;w in Folder</source>
        <translation>&amp;Montrer dans le dossier</translation>
    </message>
    <message>
        <source>Show the selected file in its folder</source>
        <translation>Montrer le fichier sélectionné dans son dossier</translation>
    </message>
    <message>
        <source>&amp;Remove</source>
        <translation>&amp;Retirer</translation>
    </message>
    <message>
        <source>Take the selected rows out of this list; files stay where they are</source>
        <translation>Retirer les lignes sélectionnées de cette liste&#xa0;; les fichiers restent où ils sont</translation>
    </message>
    <message>
        <source>Queue A&amp;gain</source>
        <translation>Relan&amp;cer</translation>
    </message>
    <message>
        <source>Queue the selected URLs again, or all of them when none is selected</source>
        <translation>Remettre les URL sélectionnées dans la file d’attente, ou toutes si aucune n’est sélectionnée</translation>
    </message>
    <message>
        <source>Re&amp;move</source>
        <translation>R&amp;etirer</translation>
    </message>
    <message>
        <source>Start &amp;Next</source>
        <translation>&amp;URL suivante</translation>
    </message>
    <message>
        <source>&amp;Queue Again</source>
        <translation>&amp;Relancer</translation>
    </message>
    <message>
        <source>&amp;Open</source>
        <translation>&amp;Ouvrir</translation>
    </message>
    <message>
        <source>Show in &amp;Folder</source>
        <translation>&amp;Montrer dans le dossier</translation>
    </message>
    <message>
        <source>Remo&amp;ve from List</source>
        <translation>&amp;Retirer de la liste</translation>
    </message>
    <message>
        <source>&amp;Add URLs…</source>
        <translation>A&amp;jouter…</translation>
    </message>
    <message>
        <source>Type the URLs of pages and files</source>
        <translation>Saisir les URL de pages et de fichiers</translation>
    </message>
    <message>
        <source>Add &amp;URLs…</source>
        <translation>A&amp;jouter des URL…</translation>
    </message>
    <message>
        <source>Ho&amp;ld</source>
        <translation>Sus&amp;pendre</translation>
    </message>
    <message>
        <source>Start nothing more after the file that is being downloaded, and keep the queue</source>
        <translation>Ne plus rien commencer après le fichier en cours, et garder la file</translation>
    </message>
    <message>
        <source>&amp;Stop and Clear</source>
        <translation>Arrê&amp;ter et vider</translation>
    </message>
    <message>
        <source>Stop after the file that is being downloaded, and throw the rest of the queue away</source>
        <translation>S’arrêter après le fichier en cours et jeter le reste de la file</translation>
    </message>
    <message>
        <source>What the program waits for, and how it stands</source>
        <translation>Ce que le programme attend, et où il en est</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Annuler</translation>
    </message>
    <message>
        <source>Give up just the page that is loaded, or the question what a URL is</source>
        <translation>Abandonner seulement la page en chargement, ou la question de ce qu’est une URL</translation>
    </message>
    <message>
        <source>&amp;Undo</source>
        <translation>A&amp;nnuler</translation>
    </message>
    <message>
        <source>Bring back what the last command has thrown away, at the end of the queue</source>
        <translation>Remettre à la fin de la file ce que la dernière commande a jeté</translation>
    </message>
    <message>
        <source>C&amp;lear Queue</source>
        <translation>&amp;Vider la file</translation>
    </message>
    <message>
        <source>Throw all URLs of the queue away</source>
        <translation>Jeter toutes les URL de la file</translation>
    </message>
    <message>
        <source>&amp;Hold</source>
        <translation>Sus&amp;pendre</translation>
    </message>
    <message>
        <source>Cancel Loadin&amp;g</source>
        <translation>Annuler le char&amp;gement</translation>
    </message>
    <message>
        <source>Show just the URLs that hold this text</source>
        <translation>N’afficher que les URL qui contiennent ce texte</translation>
    </message>
    <message>
        <source>Filter of the queue</source>
        <translation>Filtre de la file</translation>
    </message>
    <message>
        <source>How much the filter shows</source>
        <translation>Ce que le filtre affiche</translation>
    </message>
    <message>
        <source>&amp;Save List…</source>
        <translation>&amp;Enregistrer la liste…</translation>
    </message>
    <message>
        <source>Write the URLs that wait and those that failed to a file, one a line</source>
        <translation>Écrire dans un fichier les URL en attente et celles qui ont échoué, une par ligne</translation>
    </message>
    <message>
        <source>&amp;Filter…</source>
        <translation>&amp;Filtrer…</translation>
    </message>
    <message>
        <source>Show just some of the URLs that wait</source>
        <translation>N’afficher que certaines des URL en attente</translation>
    </message>
    <message>
        <source>Re&amp;move Duplicates</source>
        <translation>Retirer les dou&amp;blons</translation>
    </message>
    <message>
        <source>Take URLs out of the queue that wait there already</source>
        <translation>Retirer de la file les URL qui y attendent déjà</translation>
    </message>
    <message>
        <source>&amp;Manual</source>
        <translation>&amp;Manuel</translation>
    </message>
    <message>
        <source>&amp;Import Page…</source>
        <translation>&amp;Importer une page…</translation>
    </message>
</context>
<context>
    <name>quillforth::desktop::AddSheet</name>
    <message>
        <source>Add URLs</source>
        <translation>Ajouter des URL</translation>
    </message>
    <message>
        <source>&amp;URLs of pages and files, one a line:</source>
        <translation>&amp;URL de pages et de fichiers, une par ligne&#xa0;:</translation>
    </message>
    <message>
        <source>URLs of pages and files</source>
        <translation>URL de pages et de fichiers</translation>
    </message>
    <message>
        <source>&amp;Add</source>
        <translation>A&amp;jouter</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>&amp;Annuler</translation>
    </message>
    <message>
        <source>That is too much at a time.</source>
        <translation>Il y en a trop à la fois.</translation>
    </message>
    <message>
        <source>Lines that are taken for hosts:</source>
        <translation>Lignes prises pour des serveurs&#xa0;:</translation>
    </message>
    <message>
        <source>and %1 more</source>
        <translation>et %1 de plus</translation>
    </message>
    <message>
        <source>&amp;Open List…</source>
        <translation>&amp;Ouvrir une liste…</translation>
    </message>
    <message>
        <source>Add the lines of a file</source>
        <translation>Ajouter les lignes d’un fichier</translation>
    </message>
    <message>
        <source>Open List</source>
        <translation>Ouvrir une liste</translation>
    </message>
    <message>
        <source>The list could not be read: %1</source>
        <translation>La liste n’a pas pu être lue : %1</translation>
    </message>
    <message>
        <source>Not taken:</source>
        <translation>Non acceptées :</translation>
    </message>
</context>
<context>
    <name>quillforth::desktop::AuthenticationSheet</name>
    <message>
        <source>The proxy server %1 asks for a user name and a password.</source>
        <translation>Le serveur mandataire %1 demande un nom d’utilisateur et un mot de passe.</translation>
    </message>
    <message>
        <source>The proxy server %1 asks for a user name and a password for &quot;%2&quot;.</source>
        <translation>Le serveur mandataire %1 demande un nom d’utilisateur et un mot de passe pour « %2 ».</translation>
    </message>
    <message>
        <source>The server %1 asks for a user name and a password.</source>
        <translation>Le serveur %1 demande un nom d’utilisateur et un mot de passe.</translation>
    </message>
    <message>
        <source>The server %1 asks for a user name and a password for &quot;%2&quot;.</source>
        <translation>Le serveur %1 demande un nom d’utilisateur et un mot de passe pour « %2 ».</translation>
    </message>
    <message>
        <source>The user name or the password was refused.</source>
        <translation>Le nom d’utilisateur ou le mot de passe a été refusé.</translation>
    </message>
    <message>
        <source>&amp;User name:</source>
        <translation>Nom d’&amp;utilisateur :</translation>
    </message>
    <message>
        <source>&amp;Password:</source>
        <translation>&amp;Mot de passe :</translation>
    </message>
</context>
<context>
    <name>quillforth::desktop::BusService</name>
    <message>
        <source>Download %1 with Quillforth</source>
        <translation>Télécharger %1 avec Quillforth</translation>
    </message>
</context>
<context>
    <name>quillforth::desktop::ChooseSheet</name>
    <message>
        <source>Choose Links</source>
        <translation>Choisir les liens</translation>
    </message>
    <message>
        <source>Links of %1</source>
        <translation>Liens de %1</translation>
    </message>
    <message>
        <source>Show just the URLs that hold this text</source>
        <translation>N’afficher que les URL qui contiennent ce texte</translation>
    </message>
    <message>
        <source>Filter of the links</source>
        <translation>Filtre des liens</translation>
    </message>
    <message>
        <source>Links of the page</source>
        <translation>Liens de la page</translation>
    </message>
    <message>
        <source>No URL passes the filter.</source>
        <translation>Aucune URL ne correspond au filtre.</translation>
    </message>
    <message>
        <source>&amp;Queue Ticked</source>
        <translation>&amp;Mettre en file les cochés</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>&amp;Annuler</translation>
    </message>
    <message>
        <source>Queue none of them</source>
        <translation>N’en mettre aucun en file</translation>
    </message>
    <message>
        <source>&amp;Tick All</source>
        <translation>&amp;Tout cocher</translation>
    </message>
    <message>
        <source>&amp;Untick All</source>
        <translation>Tout &amp;décocher</translation>
    </message>
    <message>
        <source>All links that the filter shows</source>
        <translation>Tous les liens que le filtre affiche</translation>
    </message>
    <message>
        <source>Ticked: %1 of %2. Shown: %3.</source>
        <translation>Cochés&#xa0;: %1 sur %2. Affichés&#xa0;: %3.</translation>
    </message>
</context>
<context>
    <name>quillforth::desktop::CompletionNotice</name>
    <message>
        <source>A download failed</source>
        <translation>Un téléchargement a échoué</translation>
    </message>
    <message>
        <source>Files downloaded: %1</source>
        <translation>Fichiers téléchargés&#xa0;: %1</translation>
    </message>
    <message>
        <source>The queue is done</source>
        <translation>La file d’attente est terminée</translation>
    </message>
    <message>
        <source>The queue is done, with failures</source>
        <translation>La file d’attente est terminée, avec des échecs</translation>
    </message>
    <message>
        <source>Failed downloads: %1</source>
        <translation>Téléchargements échoués&#xa0;: %1</translation>
    </message>
</context>
<context>
    <name>quillforth::desktop::DesktopNotification</name>
    <message>
        <source>Show</source>
        <translation>Afficher</translation>
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
        <translation>Raison</translation>
    </message>
    <message>
        <source>Found On</source>
        <translation>Trouvée sur</translation>
    </message>
</context>
<context>
    <name>quillforth::desktop::FinishedModel</name>
    <message>
        <source>Name</source>
        <translation>Nom</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Taille</translation>
    </message>
    <message>
        <source>Folder</source>
        <translation>Dossier</translation>
    </message>
    <message>
        <source>Source</source>
        <translation>Source</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Heure</translation>
    </message>
</context>
<context>
    <name>quillforth::desktop::ImportWindow</name>
    <message>
        <source>Waiting for its turn…</source>
        <translation>En attente de son tour…</translation>
    </message>
    <message>
        <source>Loading the page…</source>
        <translation>Chargement de la page…</translation>
    </message>
    <message>
        <source>&amp;Import</source>
        <translation>&amp;Importer</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>&amp;Annuler</translation>
    </message>
</context>
<context>
    <name>quillforth::desktop::KindsButton</name>
    <message>
        <source>Kinds of URLs that are shown</source>
        <translation>Types d’URL affichés</translation>
    </message>
    <message>
        <source>&amp;Pictures</source>
        <translation>&amp;Images</translation>
    </message>
    <message>
        <source>&amp;Sound</source>
        <translation>&amp;Sons</translation>
    </message>
    <message>
        <source>&amp;Film</source>
        <translation>&amp;Films</translation>
    </message>
    <message>
        <source>&amp;Archives</source>
        <translation>&amp;Archives</translation>
    </message>
    <message>
        <source>&amp;Documents</source>
        <translation>&amp;Documents</translation>
    </message>
    <message>
        <source>Pa&amp;ges</source>
        <translation>Pa&amp;ges</translation>
    </message>
    <message>
        <source>All Kinds</source>
        <translation>Tous les types</translation>
    </message>
    <message>
        <source>%1 Kinds</source>
        <translation>%1 types</translation>
    </message>
</context>
<context>
    <name>quillforth::desktop::Outcomes</name>
    <message>
        <source>What has arrived will be listed here</source>
        <translation>Les téléchargements terminés s’affichent ici</translation>
    </message>
    <message>
        <source>What fails will be listed here</source>
        <translation>Les échecs s’affichent ici</translation>
    </message>
    <message>
        <source>is not a valid URL; Start Next goes on</source>
        <translation>n’est pas une URL valide&#xa0;; «&#xa0;URL suivante&#xa0;» continue</translation>
    </message>
    <message>
        <source>Waiting (%1)</source>
        <translation>En attente (%1)</translation>
    </message>
    <message>
        <source>Finished (%1)</source>
        <translation>Terminés (%1)</translation>
    </message>
    <message>
        <source>Failed (%1)</source>
        <translation>Échecs (%1)</translation>
    </message>
    <message>
        <source>%1 done, %2 failed</source>
        <translation>%1 faits, %2 échecs</translation>
    </message>
    <message>
        <source> (the oldest %1 are not listed any more)</source>
        <translation> (les %1 plus anciens ne sont plus affichés)</translation>
    </message>
</context>
<context>
    <name>quillforth::desktop::PreferencesWindow</name>
    <message>
        <source>The change could not be saved in %1.</source>
        <translation>La modification n’a pas pu être enregistrée dans %1.</translation>
    </message>
    <message>
        <source>Switch Accessibility On</source>
        <translation>Activer l’accessibilité</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Fermer</translation>
    </message>
    <message>
        <source>Accessibility could not be switched on.</source>
        <translation>L’accessibilité n’a pas pu être activée.</translation>
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
        <translation>URL en attente</translation>
    </message>
</context>
<context>
    <name>quillforth::desktop::QueueTable</name>
    <message>
        <source>No URL passes the filter.</source>
        <translation>Aucune URL ne correspond au filtre.</translation>
    </message>
</context>
<context>
    <name>quillforth::desktop::StatusWindow</name>
    <message>
        <source>Not everything could be taken.</source>
        <translation>Tout n’a pas pu être pris.</translation>
    </message>
    <message>
        <source>Neither a file nor an http, https or ftp URL:</source>
        <translation>Ni un fichier ni une adresse http, https ou ftp :</translation>
    </message>
    <message>
        <source>Open Link File</source>
        <translation>Ouvrir un fichier de lien</translation>
    </message>
    <message>
        <source>Quit Quillforth?</source>
        <translation>Quitter Quillforth ?</translation>
    </message>
    <message>
        <source>Quit</source>
        <translation>Quitter</translation>
    </message>
    <message>
        <source>Quillforth %1</source>
        <translation>Quillforth %1</translation>
    </message>
    <message>
        <source>Downloads files from the web in batches.</source>
        <translation>Télécharge des fichiers du web par lots.</translation>
    </message>
    <message>
        <source>That is too much at a time.</source>
        <translation>Il y en a trop à la fois.</translation>
    </message>
    <message>
        <source>Nothing was taken. Paste fewer lines, or wait until those before are taken.</source>
        <translation>Rien n’a été accepté. Collez moins de lignes, ou attendez que les précédentes soient acceptées.</translation>
    </message>
    <message>
        <source>Paste takes http, https and ftp URLs, one a line.</source>
        <translation>Le collage accepte les URL http, https et ftp, une par ligne.</translation>
    </message>
    <message>
        <source>The clipboard holds none.</source>
        <translation>Le presse-papiers n’en contient aucune.</translation>
    </message>
    <message>
        <source>Not taken:</source>
        <translation>Non acceptées :</translation>
    </message>
    <message>
        <source>The page has no links.</source>
        <translation>La page n’a pas de liens.</translation>
    </message>
    <message>
        <source>&amp;Undo Clear</source>
        <translation>A&amp;nnuler le vidage</translation>
    </message>
    <message>
        <source>&amp;Undo Stop</source>
        <translation>A&amp;nnuler l’arrêt</translation>
    </message>
    <message>
        <source>&amp;Undo Import</source>
        <translation>A&amp;nnuler l’importation</translation>
    </message>
    <message>
        <source>&amp;Undo Delete</source>
        <translation>A&amp;nnuler la suppression</translation>
    </message>
    <message>
        <source>&amp;Continue</source>
        <translation>Re&amp;prendre</translation>
    </message>
    <message>
        <source>&amp;Hold</source>
        <translation>Sus&amp;pendre</translation>
    </message>
    <message>
        <source>Contin&amp;ue</source>
        <translation>Re&amp;prendre</translation>
    </message>
    <message>
        <source>Ho&amp;ld</source>
        <translation>Sus&amp;pendre</translation>
    </message>
    <message>
        <source>On hold: nothing more is started until you press Continue.</source>
        <translation>En attente : rien ne commence plus avant « Reprendre ».</translation>
    </message>
    <message>
        <source>&amp;Undo</source>
        <translation>A&amp;nnuler</translation>
    </message>
    <message>
        <source>What is under way will be broken off.</source>
        <translation>Ce qui est en cours sera interrompu.</translation>
    </message>
    <message>
        <source>URLs that will be lost: %1</source>
        <translation>URL qui seront perdues : %1</translation>
    </message>
    <message>
        <source>Stay</source>
        <translation>Rester</translation>
    </message>
    <message>
        <source>Free software under the MIT licence.</source>
        <translation>Logiciel libre sous licence MIT.</translation>
    </message>
    <message>
        <source>There is no program here to show the manual with.</source>
        <translation>Aucun programme ne peut afficher le manuel ici.</translation>
    </message>
    <message>
        <source>A terminal shows it with: man quillforth</source>
        <translation>Un terminal l’affiche avec : man quillforth</translation>
    </message>
    <message>
        <source>(%1 of %2)</source>
        <translation>(%1 sur %2)</translation>
    </message>
    <message>
        <source>%1 %</source>
        <translation>%1 %</translation>
    </message>
    <message>
        <source>&amp;Undo Remove Duplicates</source>
        <translation>A&amp;nnuler le retrait des doublons</translation>
    </message>
    <message>
        <source>The list could not be saved.</source>
        <translation>La liste n’a pas pu être enregistrée.</translation>
    </message>
    <message>
        <source>Save List</source>
        <translation>Enregistrer la liste</translation>
    </message>
    <message>
        <source>%1 of %2 shown</source>
        <translation>%1 sur %2 affichées</translation>
    </message>
    <message>
        <source>Nothing will be lost.</source>
        <translation>Rien ne sera perdu.</translation>
    </message>
    <message>
        <source>Drop or paste URLs here</source>
        <translation>Déposez ou collez des URL ici</translation>
    </message>
    <message>
        <source>The work has ended. Failed: %1 of %2.</source>
        <translation>Le travail est terminé. Échecs&#xa0;: %1 sur %2.</translation>
    </message>
    <message>
        <source>%1 bytes</source>
        <translation>%1 octets</translation>
    </message>
    <message>
        <source>%1 of %2 bytes</source>
        <translation>%1 octets sur %2</translation>
    </message>
    <message>
        <source>No links on %1.</source>
        <translation>Aucun lien sur %1.</translation>
    </message>
    <message>
        <source>Import has emptied the queue; Undo brings it back.</source>
        <translation>L’import a vidé la file d’attente ; Annuler la rétablit.</translation>
    </message>
</context>
<context>
    <name>quillforth::desktop::WorkLine</name>
    <message>
        <source>Loading %1</source>
        <translation>Chargement de %1</translation>
    </message>
    <message>
        <source>Asking %1 what it is</source>
        <translation>Question à %1 : page ou fichier ?</translation>
    </message>
</context>
</TS>
