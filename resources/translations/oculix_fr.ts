<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr">
<context>
    <name>CAboutDlg</name>
    <message>
        <source>About %1</source>
        <translation>À propos de %1</translation>
    </message>
    <message>
        <source>Live pictures, measurements and recordings from USB microscope cameras.</source>
        <translation>Images en direct, mesures et enregistrements des caméras de microscope USB.</translation>
    </message>
    <message>
        <source>User manual</source>
        <translation>Manuel d&apos;utilisation</translation>
    </message>
</context>
<context>
    <name>CBinaryDlg</name>
    <message>
        <source>Binary</source>
        <translation>Binarisation</translation>
    </message>
    <message>
        <source>Binary image</source>
        <translation>Image binaire</translation>
    </message>
    <message>
        <source>Level</source>
        <translation>Seuil</translation>
    </message>
</context>
<context>
    <name>CCameraControls</name>
    <message>
        <source>The camera has no device node.</source>
        <translation>La caméra n&apos;a pas de fichier de périphérique.</translation>
    </message>
</context>
<context>
    <name>CChooseDeviceDlg</name>
    <message>
        <source>Video Capture Device</source>
        <translation>Périphérique de capture vidéo</translation>
    </message>
    <message>
        <source>Video capture device:</source>
        <translation>Périphérique de capture vidéo :</translation>
    </message>
</context>
<context>
    <name>CDevicePropertiesDlg</name>
    <message>
        <source>Video Properties</source>
        <translation>Propriétés vidéo</translation>
    </message>
    <message>
        <source>This camera offers no settings here. %1</source>
        <translation>Cette caméra ne propose aucun réglage ici. %1</translation>
    </message>
    <message>
        <source>This camera offers no settings.</source>
        <translation>Cette caméra ne propose aucun réglage.</translation>
    </message>
    <message>
        <source>&amp;Default</source>
        <translation>&amp;Par défaut</translation>
    </message>
</context>
<context>
    <name>CDlgFullScreen</name>
    <message>
        <source>Full Screen</source>
        <translation>Plein écran</translation>
    </message>
</context>
<context>
    <name>CFlatFieldDlg</name>
    <message>
        <source>&amp;Take Blank Field</source>
        <translation>&amp;Prendre le champ vide</translation>
    </message>
    <message>
        <source>&amp;Correct the shading</source>
        <translation>&amp;Corriger l&apos;éclairage</translation>
    </message>
    <message>
        <source>Flat-Field</source>
        <translation>Champ plat</translation>
    </message>
    <message>
        <source>Move to an empty area of the slide, or take the slide away, keep the light as for the specimen, then take the blank field. It is kept for this camera and resolution and used again whenever they match.</source>
        <translation>Placez-vous sur une zone vide de la lame, ou retirez la lame, gardez l&apos;éclairage du spécimen, puis prenez le champ vide. Il est conservé pour cette caméra et cette résolution et réutilisé chaque fois qu&apos;elles correspondent.</translation>
    </message>
    <message>
        <source>No picture from the camera yet.</source>
        <translation>Pas encore d&apos;image de la caméra.</translation>
    </message>
    <message>
        <source>A blank field is kept for this camera at %1 x %2.</source>
        <translation>Un champ vide est conservé pour cette caméra en %1 x %2.</translation>
    </message>
    <message>
        <source>No blank field is kept for this camera at %1 x %2.</source>
        <translation>Aucun champ vide n&apos;est conservé pour cette caméra en %1 x %2.</translation>
    </message>
    <message>
        <source>Taking the blank field...</source>
        <translation>Prise du champ vide...</translation>
    </message>
    <message>
        <source>No frames came from the camera; the blank field was not taken.</source>
        <translation>Aucune image n&apos;est venue de la caméra ; le champ vide n&apos;a pas été pris.</translation>
    </message>
    <message>
        <source>The blank field cannot be kept: %1</source>
        <translation>Le champ vide ne peut pas être conservé : %1</translation>
    </message>
    <message>
        <source>The blank field is black in a colour and cannot correct the picture.</source>
        <translation>Le champ vide est noir dans une couleur et ne peut pas corriger l&apos;image.</translation>
    </message>
</context>
<context>
    <name>CFolderEdit</name>
    <message>
        <source>Select Path:</source>
        <translation>Choisir le dossier :</translation>
    </message>
</context>
<context>
    <name>CFormatDlg</name>
    <message>
        <source>Output size and format of the camera:</source>
        <translation>Taille et format de sortie de la caméra :</translation>
    </message>
</context>
<context>
    <name>CGraticuleDlg</name>
    <message>
        <source>Detect from micrometer</source>
        <translation>Détecter depuis le micromètre</translation>
    </message>
    <message>
        <source>Search only inside the ruler</source>
        <translation>Chercher seulement dans la règle</translation>
    </message>
    <message>
        <source>Detect</source>
        <translation>Détecter</translation>
    </message>
    <message>
        <source>Accept</source>
        <translation>Accepter</translation>
    </message>
    <message>
        <source>Division value</source>
        <translation>Valeur d&apos;une division</translation>
    </message>
    <message>
        <source>No picture</source>
        <translation>Pas d&apos;image</translation>
    </message>
</context>
<context>
    <name>CHistogramDock</name>
    <message>
        <source>Histogram</source>
        <translation>Histogramme</translation>
    </message>
</context>
<context>
    <name>CHistogramPanel</name>
    <message>
        <source>No live picture</source>
        <translation>Pas d&apos;image en direct</translation>
    </message>
    <message>
        <source>Clipped: %1 % bright, %2 % dark</source>
        <translation>Écrêté : %1 % clair, %2 % sombre</translation>
    </message>
    <message>
        <source>&amp;Log scale</source>
        <translation>Échelle &amp;logarithmique</translation>
    </message>
    <message>
        <source>Flash &amp;clipped</source>
        <translation>Faire clignoter l&apos;é&amp;crêtage</translation>
    </message>
    <message>
        <source>Clipped pixels flash in the live picture: bright ones red, dark ones blue</source>
        <translation>Les pixels écrêtés clignotent dans l&apos;image en direct : les clairs en rouge, les sombres en bleu</translation>
    </message>
</context>
<context>
    <name>CInputTextDlg</name>
    <message>
        <source>Input Text</source>
        <translation>Saisir le texte</translation>
    </message>
    <message>
        <source>Text(New line by pressing CTRL+ENTER)</source>
        <translation>Texte (nouvelle ligne avec CTRL+ENTRÉE)</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Annuler</translation>
    </message>
</context>
<context>
    <name>CIntervalCapDlg</name>
    <message>
        <source>Wait (sec)</source>
        <translation>Attente (s)</translation>
    </message>
    <message>
        <source>Please input an integer between 0 and 100!</source>
        <translation>Veuillez saisir un entier entre 0 et 100 !</translation>
    </message>
    <message>
        <source>Interval (sec)</source>
        <translation>Intervalle (s)</translation>
    </message>
    <message>
        <source>Please input an integer between 1 and 100!</source>
        <translation>Veuillez saisir un entier entre 1 et 100 !</translation>
    </message>
    <message>
        <source>Images</source>
        <translation>Images</translation>
    </message>
    <message>
        <source>Please input an integer between 1 and 1000!</source>
        <translation>Veuillez saisir un entier entre 1 et 1000 !</translation>
    </message>
    <message>
        <source>Start</source>
        <translation>Démarrer</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Arrêter</translation>
    </message>
    <message>
        <source>Interval capture</source>
        <translation>Capture à intervalles</translation>
    </message>
    <message>
        <source>Current</source>
        <translation>En cours</translation>
    </message>
    <message>
        <source>File Name</source>
        <translation>Nom du fichier</translation>
    </message>
    <message>
        <source>No</source>
        <translation>N°</translation>
    </message>
</context>
<context>
    <name>CLiveFocus</name>
    <message>
        <source>Focus Peaking Color</source>
        <translation>Couleur du focus peaking</translation>
    </message>
    <message>
        <source>Focus stacking: sweep the focus through the specimen, then choose Focus Stack again.</source>
        <translation>Empilement de mise au point : balayez la mise au point à travers l&apos;échantillon, puis choisissez de nouveau Empilement de mise au point.</translation>
    </message>
    <message>
        <source>Focus stacking cancelled.</source>
        <translation>Empilement de mise au point annulé.</translation>
    </message>
    <message>
        <source>No frame reached the focus stack: the camera sent none.</source>
        <translation>Aucune image n&apos;est parvenue à l&apos;empilement : la caméra n&apos;en a envoyé aucune.</translation>
    </message>
    <message>
        <source>The focus stack could not be made: %1</source>
        <translation>L&apos;empilement de mise au point n&apos;a pas pu être réalisé : %1</translation>
    </message>
    <message>
        <source>Focus Stack</source>
        <translation>Empilement de mise au point</translation>
    </message>
    <message>
        <source>Some frames were left out of the focus stack: %1</source>
        <translation>Certaines images ont été écartées de l&apos;empilement : %1</translation>
    </message>
    <message>
        <source>Live Stack %1</source>
        <translation>Empilement en direct %1</translation>
    </message>
    <message>
        <source>Live Stack %1 Depth</source>
        <translation>Profondeur de l&apos;empilement en direct %1</translation>
    </message>
    <message>
        <source>Sharpness: %1</source>
        <translation>Netteté : %1</translation>
    </message>
</context>
<context>
    <name>CMainFrame</name>
    <message>
        <source>Already having one instance running!</source>
        <translation>Une instance est déjà en cours d&apos;exécution !</translation>
    </message>
</context>
<context>
    <name>CMeasureApp</name>
    <message>
        <source>Image File (*.bmp, *.jpg)</source>
        <translation>Fichier image (*.bmp, *.jpg)</translation>
    </message>
    <message>
        <source>Bitmap (*.bmp)</source>
        <translation>Bitmap (*.bmp)</translation>
    </message>
    <message>
        <source>JPEG (*.jpg *.jpeg)</source>
        <translation>JPEG (*.jpg *.jpeg)</translation>
    </message>
    <message>
        <source>PNG (*.png)</source>
        <translation>PNG (*.png)</translation>
    </message>
    <message>
        <source>TIFF (*.tif *.tiff)</source>
        <translation>TIFF (*.tif *.tiff)</translation>
    </message>
    <message>
        <source>Targa (*.tga)</source>
        <translation>Targa (*.tga)</translation>
    </message>
    <message>
        <source>GIF (*.gif)</source>
        <translation>GIF (*.gif)</translation>
    </message>
    <message>
        <source>PCX (*.pcx)</source>
        <translation>PCX (*.pcx)</translation>
    </message>
    <message>
        <source>All pictures (*.bmp *.jpg *.jpeg *.png *.tif *.tiff *.tga *.gif *.pcx)</source>
        <translation>Toutes les images (*.bmp *.jpg *.jpeg *.png *.tif *.tiff *.tga *.gif *.pcx)</translation>
    </message>
    <message>
        <source>The user manual %1 is missing. Reinstall the program to get it back.</source>
        <translation>Le manuel d&apos;utilisation %1 est introuvable. Réinstallez le programme pour le retrouver.</translation>
    </message>
    <message>
        <source>No program to show %1 was found. Install a PDF viewer.</source>
        <translation>Aucun programme pour afficher %1 n&apos;a été trouvé. Installez un lecteur PDF.</translation>
    </message>
    <message>
        <source>No file manager could show %1.</source>
        <translation>Aucun gestionnaire de fichiers n&apos;a pu afficher %1.</translation>
    </message>
    <message>
        <source>Camera connected: %1. &quot;New Preview&quot; shows its video.</source>
        <translation>Caméra connectée : %1. « Nouvel aperçu » affiche sa vidéo.</translation>
    </message>
    <message>
        <source>Oculix is already running but does not answer. Close it, or end it if it hangs, then start Oculix again.</source>
        <translation>Oculix est déjà en cours d&apos;exécution mais ne répond pas. Fermez-le, ou arrêtez-le s&apos;il est bloqué, puis relancez Oculix.</translation>
    </message>
    <message>
        <source>Oculix</source>
        <translation>Oculix</translation>
    </message>
    <message>
        <source>Focus Stack Pictures</source>
        <translation>Empiler des images de mise au point</translation>
    </message>
    <message>
        <source>Choose at least two pictures of the same field, taken at different focus.</source>
        <translation>Choisissez au moins deux images du même champ, prises à des mises au point différentes.</translation>
    </message>
    <message>
        <source>Fusing the pictures...</source>
        <translation>Fusion des images...</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Annuler</translation>
    </message>
    <message>
        <source>%1 could not be read: %2</source>
        <translation>Impossible de lire %1 : %2</translation>
    </message>
    <message>
        <source>%1 does not fit the series: %2</source>
        <translation>%1 ne convient pas à la série : %2</translation>
    </message>
    <message>
        <source>Stack %1</source>
        <translation>Pile %1</translation>
    </message>
    <message>
        <source>Stitch Pictures, in the Order Taken</source>
        <translation>Assembler les images, dans l&apos;ordre de prise</translation>
    </message>
    <message>
        <source>Cannot read the picture %1:
%2</source>
        <translation>Impossible de lire l&apos;image %1 :
%2</translation>
    </message>
    <message>
        <source>The picture %1 cannot be placed: %2.
Each picture must overlap one taken before it by about a fifth.</source>
        <translation>L&apos;image %1 ne peut pas être placée : %2.
Chaque image doit recouvrir d&apos;environ un cinquième une image prise avant elle.</translation>
    </message>
    <message>
        <source>Mosaic of %1 pictures</source>
        <translation>Mosaïque de %1 images</translation>
    </message>
</context>
<context>
    <name>CMeasureColorDlg</name>
    <message>
        <source>Measure Setting</source>
        <translation>Réglages de mesure</translation>
    </message>
    <message>
        <source>Measure Color</source>
        <translation>Couleurs de mesure</translation>
    </message>
    <message>
        <source>Measurement</source>
        <translation>Mesure</translation>
    </message>
    <message>
        <source>Point</source>
        <translation>Point</translation>
    </message>
    <message>
        <source>Text</source>
        <translation>Texte</translation>
    </message>
    <message>
        <source>Others</source>
        <translation>Autres</translation>
    </message>
    <message>
        <source>Precision</source>
        <translation>Précision</translation>
    </message>
    <message>
        <source>Font Size</source>
        <translation>Taille de police</translation>
    </message>
    <message>
        <source>Font 
Background</source>
        <translation>Fond du 
texte</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Annuler</translation>
    </message>
</context>
<context>
    <name>CMeasureDoc</name>
    <message>
        <source>Ex&amp;port data</source>
        <translation>Ex&amp;porter les données</translation>
    </message>
    <message>
        <source>Video</source>
        <translation>Vidéo</translation>
    </message>
    <message>
        <source>The camera has not delivered a picture yet. Try again in a moment.</source>
        <translation>La caméra n&apos;a pas encore fourni d&apos;image. Réessayez dans un instant.</translation>
    </message>
    <message>
        <source>Capture</source>
        <translation>Capture</translation>
    </message>
    <message>
        <source>Cannot open the picture %1:
%2</source>
        <translation>Impossible d&apos;ouvrir l&apos;image %1 :
%2</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Ouvrir</translation>
    </message>
    <message>
        <source>Cannot write the measurement data to %1:
%2</source>
        <translation>Impossible d&apos;écrire les données de mesure dans %1 :
%2</translation>
    </message>
    <message>
        <source>Export</source>
        <translation>Exporter</translation>
    </message>
    <message>
        <source>The camera &quot;%1&quot; is not connected. Plug it in again to go on with the live video.</source>
        <translation>La caméra « %1 » n&apos;est pas connectée. Rebranchez-la pour reprendre la vidéo en direct.</translation>
    </message>
    <message>
        <source>Preview</source>
        <translation>Aperçu</translation>
    </message>
    <message>
        <source>Picture has successfully saved to</source>
        <translation>L’image a été enregistrée dans</translation>
    </message>
    <message>
        <source>Hint</source>
        <translation>Information</translation>
    </message>
    <message>
        <source>Save image failed.</source>
        <translation>L’enregistrement de l’image a échoué.</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Enregistrer</translation>
    </message>
    <message>
        <source>Failed to write JPEG file Summary information!</source>
        <translation>Impossible d’écrire le résumé du fichier JPEG !</translation>
    </message>
    <message>
        <source>the picture was saved but its measurements could not be kept: %1</source>
        <translation>l&apos;image a été enregistrée, mais ses mesures n&apos;ont pas pu être conservées : %1</translation>
    </message>
    <message>
        <source>this picture&apos;s calibration is not valid; the current calibration is used</source>
        <translation>l&apos;étalonnage de cette image n&apos;est pas valide ; l&apos;étalonnage actuel est utilisé</translation>
    </message>
    <message>
        <source>Some measurements of this picture are not shown: %1</source>
        <translation>Certaines mesures de cette image ne sont pas affichées : %1</translation>
    </message>
    <message>
        <source>No picture from the camera to analyze.</source>
        <translation>Aucune image de la caméra à analyser.</translation>
    </message>
    <message>
        <source>Analyze Particles</source>
        <translation>Analyser les particules</translation>
    </message>
    <message>
        <source>Export ImageJ ROIs</source>
        <translation>Exporter les ROI ImageJ</translation>
    </message>
    <message>
        <source>ImageJ ROI set (*.zip)</source>
        <translation>Ensemble de ROI ImageJ (*.zip)</translation>
    </message>
    <message>
        <source>Import ImageJ ROIs</source>
        <translation>Importer des ROI ImageJ</translation>
    </message>
    <message>
        <source>ImageJ ROIs (*.zip *.roi)</source>
        <translation>ROI ImageJ (*.zip *.roi)</translation>
    </message>
    <message>
        <source>There are no shapes to export.</source>
        <translation>Il n&apos;y a aucune forme à exporter.</translation>
    </message>
    <message>
        <source>Cannot write %1:
%2</source>
        <translation>Impossible d&apos;écrire %1 :
%2</translation>
    </message>
    <message>
        <source>The file is too large for ROIs.</source>
        <translation>Le fichier est trop grand pour des ROI.</translation>
    </message>
    <message>
        <source>Cannot import %1:
%2</source>
        <translation>Impossible d&apos;importer %1 :
%2</translation>
    </message>
    <message>
        <source>%1 of the %2 ROIs have no kind of shape here (ellipses, open lines, composite shapes) and were left out.</source>
        <translation>%1 des %2 ROI n&apos;ont pas de forme correspondante ici (ellipses, lignes ouvertes, formes composées) et ont été ignorées.</translation>
    </message>
    <message>
        <source>White Balance</source>
        <translation>Balance des blancs</translation>
    </message>
    <message>
        <source>Draw a rectangle over something neutral (white or gray), then choose White Balance again.</source>
        <translation>Tracez un rectangle sur une zone neutre (blanche ou grise), puis choisissez de nouveau Balance des blancs.</translation>
    </message>
    <message>
        <source>The colour cast is stronger than the gains reach: the rectangle is as neutral as they allow. Adjust the lamp or the camera&apos;s white balance.</source>
        <translation>La dominante de couleur dépasse la portée des gains : le rectangle est aussi neutre qu&apos;ils le permettent. Réglez la lampe ou la balance des blancs de la caméra.</translation>
    </message>
    <message>
        <source>The rectangle is too small; draw it larger over the neutral area.</source>
        <translation>Le rectangle est trop petit ; tracez-le plus grand sur la zone neutre.</translation>
    </message>
    <message>
        <source>No picture from the camera yet.</source>
        <translation>Pas encore d&apos;image de la caméra.</translation>
    </message>
    <message>
        <source>The rectangle lies outside the picture.</source>
        <translation>Le rectangle est hors de l&apos;image.</translation>
    </message>
</context>
<context>
    <name>CMosaicDock</name>
    <message>
        <source>Move the stage slowly over the specimen</source>
        <translation>Déplacez lentement la platine sur l&apos;échantillon</translation>
    </message>
    <message>
        <source>Lost: move back over covered ground</source>
        <translation>Perdu : revenez sur une zone déjà couverte</translation>
    </message>
    <message>
        <source>Tracking; fields in the mosaic: %1</source>
        <translation>Suivi en cours ; champs dans la mosaïque : %1</translation>
    </message>
    <message>
        <source>Live Mosaic %1</source>
        <translation>Mosaïque en direct %1</translation>
    </message>
    <message>
        <source>Mosaic</source>
        <translation>Mosaïque</translation>
    </message>
    <message>
        <source>&amp;Stop</source>
        <translation>&amp;Arrêter</translation>
    </message>
    <message>
        <source>Open the mosaic as a picture</source>
        <translation>Ouvrir la mosaïque comme image</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>A&amp;nnuler</translation>
    </message>
    <message>
        <source>Throw the mosaic away</source>
        <translation>Abandonner la mosaïque</translation>
    </message>
</context>
<context>
    <name>CMosaicPanel</name>
    <message>
        <source>Wheel to zoom, drag to pan, double-click to see all of it</source>
        <translation>Molette pour zoomer, glisser pour déplacer, double-clic pour tout voir</translation>
    </message>
</context>
<context>
    <name>CNoCameraHint</name>
    <message>
        <source>No camera found</source>
        <translation>Aucune caméra trouvée</translation>
    </message>
    <message>
        <source>Connect a USB microscope camera: it is found as soon as it is plugged in, and &quot;New Preview&quot; then shows its video. Cameras that other programs reach through PipeWire are listed too.

You can also try measuring with the simulated camera.</source>
        <translation>Branchez une caméra de microscope USB : elle est détectée dès qu&apos;elle est branchée, et « Nouvel aperçu » affiche alors sa vidéo. Les caméras que d&apos;autres programmes atteignent par PipeWire sont aussi listées.

Vous pouvez aussi essayer de mesurer avec la caméra simulée.</translation>
    </message>
    <message>
        <source>Use the Simulated Camera</source>
        <translation>Utiliser la caméra simulée</translation>
    </message>
</context>
<context>
    <name>CParticleResultsDlg</name>
    <message>
        <source>Particles</source>
        <translation>Particules</translation>
    </message>
    <message>
        <source>No.</source>
        <translation>N°</translation>
    </message>
    <message>
        <source>Area (%1)</source>
        <translation>Aire (%1)</translation>
    </message>
    <message>
        <source>Perimeter (%1)</source>
        <translation>Périmètre (%1)</translation>
    </message>
    <message>
        <source>Diameter (%1)</source>
        <translation>Diamètre (%1)</translation>
    </message>
    <message>
        <source>Circularity</source>
        <translation>Circularité</translation>
    </message>
    <message>
        <source>X (%1)</source>
        <translation>X (%1)</translation>
    </message>
    <message>
        <source>Y (%1)</source>
        <translation>Y (%1)</translation>
    </message>
    <message>
        <source>%1 particles, mean area %2 %3 (standard deviation %4), total %5 %3, %6 % of the picture</source>
        <translation>%1 particules, aire moyenne %2 %3 (écart type %4), total %5 %3, %6 % de l&apos;image</translation>
    </message>
    <message>
        <source>Export CSV...</source>
        <translation>Exporter en CSV...</translation>
    </message>
    <message>
        <source>Cannot write %1: %2</source>
        <translation>Impossible d&apos;écrire %1 : %2</translation>
    </message>
    <message>
        <source>Export CSV</source>
        <translation>Exporter en CSV</translation>
    </message>
    <message>
        <source>CSV (*.csv)</source>
        <translation>CSV (*.csv)</translation>
    </message>
    <message>
        <source>Area %1 to %2 %3, %4 classes</source>
        <translation>Aire de %1 à %2 %3, %4 classes</translation>
    </message>
</context>
<context>
    <name>CParticlesDlg</name>
    <message>
        <source>Analyze Particles</source>
        <translation>Analyser les particules</translation>
    </message>
    <message>
        <source>Gray levels from-to</source>
        <translation>Niveaux de gris de-à</translation>
    </message>
    <message>
        <source>Automatic (Otsu)</source>
        <translation>Automatique (Otsu)</translation>
    </message>
    <message>
        <source>Automatic (ImageJ default)</source>
        <translation>Automatique (par défaut d&apos;ImageJ)</translation>
    </message>
    <message>
        <source>Automatic (Triangle)</source>
        <translation>Automatique (Triangle)</translation>
    </message>
    <message>
        <source>Dark particles on a light background</source>
        <translation>Particules sombres sur fond clair</translation>
    </message>
    <message>
        <source>Exclude particles on the edges</source>
        <translation>Exclure les particules au bord</translation>
    </message>
    <message>
        <source>Include holes</source>
        <translation>Inclure les trous</translation>
    </message>
    <message>
        <source>Split touching particles</source>
        <translation>Séparer les particules qui se touchent</translation>
    </message>
    <message>
        <source>Threshold:</source>
        <translation>Seuil :</translation>
    </message>
    <message>
        <source>Gray levels:</source>
        <translation>Niveaux de gris :</translation>
    </message>
    <message>
        <source>Area (pixels):</source>
        <translation>Aire (pixels) :</translation>
    </message>
    <message>
        <source>Circularity:</source>
        <translation>Circularité :</translation>
    </message>
</context>
<context>
    <name>CProcessPropertiesDlg</name>
    <message>
        <source>&amp;Enable realtime process</source>
        <translation>&amp;Activer le traitement en temps réel</translation>
    </message>
    <message>
        <source>Processing</source>
        <translation>Traitement</translation>
    </message>
    <message>
        <source>Flip &amp;Vertical</source>
        <translation>Retourner &amp;verticalement</translation>
    </message>
    <message>
        <source>Flip &amp;Horizontal</source>
        <translation>Retourner &amp;horizontalement</translation>
    </message>
    <message>
        <source>&amp;Gray</source>
        <translation>&amp;Gris</translation>
    </message>
    <message>
        <source>&amp;Negative</source>
        <translation>&amp;Négatif</translation>
    </message>
    <message>
        <source>&amp;Binary</source>
        <translation>&amp;Binarisation</translation>
    </message>
    <message>
        <source>&amp;Emboss</source>
        <translation>&amp;Relief</translation>
    </message>
    <message>
        <source>&amp;Sharpen</source>
        <translation>&amp;Netteté</translation>
    </message>
    <message>
        <source>RGB gain</source>
        <translation>Gain RVB</translation>
    </message>
    <message>
        <source>&amp;Apply the gains</source>
        <translation>&amp;Appliquer les gains</translation>
    </message>
    <message>
        <source>Red:</source>
        <translation>Rouge :</translation>
    </message>
    <message>
        <source>Green:</source>
        <translation>Vert :</translation>
    </message>
    <message>
        <source>Blue:</source>
        <translation>Bleu :</translation>
    </message>
    <message>
        <source>Real-time Processing</source>
        <translation>Traitement en temps réel</translation>
    </message>
</context>
<context>
    <name>CRecordDlg</name>
    <message>
        <source>Start to record</source>
        <translation>Prêt à enregistrer</translation>
    </message>
    <message>
        <source>Recording</source>
        <translation>Enregistrement en cours</translation>
    </message>
    <message>
        <source>Record paused</source>
        <translation>Enregistrement en pause</translation>
    </message>
    <message>
        <source>Record stoped</source>
        <translation>Enregistrement arrêté</translation>
    </message>
    <message>
        <source>Browse</source>
        <translation>Parcourir</translation>
    </message>
    <message>
        <source>Start</source>
        <translation>Démarrer</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>Pause</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Arrêter</translation>
    </message>
    <message>
        <source>Record</source>
        <translation>Enregistrer la vidéo</translation>
    </message>
    <message>
        <source>%1 already existed. Want to replace it?</source>
        <translation>%1 existe déjà. Voulez-vous le remplacer ?</translation>
    </message>
    <message>
        <source>ended at %1</source>
        <translation>terminé à %1</translation>
    </message>
</context>
<context>
    <name>CResolutionDlg</name>
    <message>
        <source>Set resolution</source>
        <translation>Définir la résolution</translation>
    </message>
    <message>
        <source>Resolution of saved pictures</source>
        <translation>Résolution des images enregistrées</translation>
    </message>
</context>
<context>
    <name>CRgbDlg</name>
    <message>
        <source>No.,35;Name,130;Red,50;Green,50;Blue,50</source>
        <translation>N°,35;Nom,130;Rouge,50;Vert,50;Bleu,50</translation>
    </message>
    <message>
        <source>Enable</source>
        <translation>Activer</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>Ajouter</translation>
    </message>
    <message>
        <source>Apply</source>
        <translation>Appliquer</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Supprimer</translation>
    </message>
    <message>
        <source>Advanced -&gt;</source>
        <translation>Avancé -&gt;</translation>
    </message>
    <message>
        <source>Rgb adjustment</source>
        <translation>Réglage RVB</translation>
    </message>
    <message>
        <source>Red</source>
        <translation>Rouge</translation>
    </message>
    <message>
        <source>Green</source>
        <translation>Vert</translation>
    </message>
    <message>
        <source>Blue</source>
        <translation>Bleu</translation>
    </message>
    <message>
        <source>Add current rgb values to list</source>
        <translation>Ajouter les valeurs RVB actuelles à la liste</translation>
    </message>
    <message>
        <source>Apply selected item to camera parameter</source>
        <translation>Appliquer l&apos;élément choisi aux réglages de la caméra</translation>
    </message>
    <message>
        <source>Delete selected item from list</source>
        <translation>Supprimer l&apos;élément choisi de la liste</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Nom</translation>
    </message>
    <message>
        <source>Select One item first</source>
        <translation>Choisissez d&apos;abord un élément</translation>
    </message>
    <message>
        <source>Hint</source>
        <translation>Conseil</translation>
    </message>
    <message>
        <source>Advanced &lt;-</source>
        <translation>Avancé &lt;-</translation>
    </message>
</context>
<context>
    <name>CRulerSettingDlg</name>
    <message>
        <source>Ruler Setting</source>
        <translation>Réglage de la règle</translation>
    </message>
    <message>
        <source>Real Results</source>
        <translation>Résultats réels</translation>
    </message>
    <message>
        <source>X-Ruler</source>
        <translation>Règle X</translation>
    </message>
    <message>
        <source>Y-Ruler</source>
        <translation>Règle Y</translation>
    </message>
    <message>
        <source>Physical Ruler</source>
        <translation>Règle physique</translation>
    </message>
    <message>
        <source>X-Ruler Unit</source>
        <translation>Longueur X</translation>
    </message>
    <message>
        <source>Y-Ruler Unit</source>
        <translation>Longueur Y</translation>
    </message>
    <message>
        <source>Ruler Unit</source>
        <translation>Unité de la règle</translation>
    </message>
    <message>
        <source>Image Ruler(pixel)</source>
        <translation>Règle de l&apos;image (pixels)</translation>
    </message>
    <message>
        <source>Pause mode measure</source>
        <translation>Mesure en pause</translation>
    </message>
    <message>
        <source>Magnification</source>
        <translation>Grossissement</translation>
    </message>
    <message>
        <source>Save As</source>
        <translation>Enregistrer sous</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Ouvrir</translation>
    </message>
    <message>
        <source>Detect from micrometer</source>
        <translation>Détecter depuis le micromètre</translation>
    </message>
    <message>
        <source>There is no picture to look for a micrometer in.</source>
        <translation>Il n&apos;y a pas d&apos;image dans laquelle chercher un micromètre.</translation>
    </message>
</context>
<context>
    <name>CSaveAsDlg</name>
    <message>
        <source>Save As</source>
        <translation>Enregistrer sous</translation>
    </message>
    <message>
        <source>Image type</source>
        <translation>Type d’image</translation>
    </message>
    <message>
        <source>Folder:</source>
        <translation>Dossier :</translation>
    </message>
    <message>
        <source>File name:</source>
        <translation>Nom du fichier :</translation>
    </message>
    <message>
        <source>Title:</source>
        <translation>Titre :</translation>
    </message>
    <message>
        <source>Subject:</source>
        <translation>Sujet :</translation>
    </message>
    <message>
        <source>Author:</source>
        <translation>Auteur :</translation>
    </message>
    <message>
        <source>Comment:</source>
        <translation>Commentaire :</translation>
    </message>
    <message>
        <source>Please select folder for the saving file.</source>
        <translation>Veuillez choisir le dossier du fichier à enregistrer.</translation>
    </message>
    <message>
        <source>Hint</source>
        <translation>Information</translation>
    </message>
    <message>
        <source>%1 already existed. Want to replace it?</source>
        <translation>%1 existe déjà. Voulez-vous le remplacer ?</translation>
    </message>
</context>
<context>
    <name>CSaveOptionDlg</name>
    <message>
        <source>Save Option</source>
        <translation>Options d’enregistrement</translation>
    </message>
    <message>
        <source>Title:</source>
        <translation>Titre :</translation>
    </message>
    <message>
        <source>Author:</source>
        <translation>Auteur :</translation>
    </message>
    <message>
        <source>Folder:</source>
        <translation>Dossier :</translation>
    </message>
    <message>
        <source>Prefix:</source>
        <translation>Préfixe :</translation>
    </message>
    <message>
        <source>Number:</source>
        <translation>Numéro :</translation>
    </message>
    <message>
        <source>Image type:</source>
        <translation>Type d’image :</translation>
    </message>
    <message>
        <source>Please select folder for the saving file.</source>
        <translation>Veuillez choisir le dossier du fichier à enregistrer.</translation>
    </message>
    <message>
        <source>Hint</source>
        <translation>Information</translation>
    </message>
</context>
<context>
    <name>CSaveOverlayGroup</name>
    <message>
        <source>Burn into the picture</source>
        <translation>Incruster dans l’image</translation>
    </message>
    <message>
        <source>Measurement</source>
        <translation>Mesures</translation>
    </message>
    <message>
        <source>Ruler</source>
        <translation>Règle</translation>
    </message>
    <message>
        <source>Scale</source>
        <translation>Échelle</translation>
    </message>
    <message>
        <source>Date</source>
        <translation>Date</translation>
    </message>
    <message>
        <source>Title</source>
        <translation>Titre</translation>
    </message>
</context>
<context>
    <name>Command</name>
    <message>
        <source>&amp;New Preview	Ctrl+N</source>
        <translation>&amp;Nouvel aperçu	Ctrl+N</translation>
    </message>
    <message>
        <source>New preview</source>
        <translation>Nouvel aperçu</translation>
    </message>
    <message>
        <source>&amp;Open...	Ctrl+O</source>
        <translation>&amp;Ouvrir...	Ctrl+O</translation>
    </message>
    <message>
        <source>Open an existing image</source>
        <translation>Ouvrir une image existante</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>&amp;Fermer</translation>
    </message>
    <message>
        <source>Close the active imaget</source>
        <translation>Fermer l&apos;image active</translation>
    </message>
    <message>
        <source>E&amp;xit</source>
        <translation>&amp;Quitter</translation>
    </message>
    <message>
        <source>&amp;Status Bar</source>
        <translation>Barre d&apos;é&amp;tat</translation>
    </message>
    <message>
        <source>Show or hide the status bar</source>
        <translation>Afficher ou masquer la barre d&apos;état</translation>
    </message>
    <message>
        <source>&amp;Tool Bar</source>
        <translation>&amp;Barre d&apos;outils</translation>
    </message>
    <message>
        <source>Show or hide the toolbar</source>
        <translation>Afficher ou masquer la barre d&apos;outils</translation>
    </message>
    <message>
        <source>&amp;Process Bar</source>
        <translation>Barre de &amp;traitement</translation>
    </message>
    <message>
        <source>Show or hide Process Bar</source>
        <translation>Afficher ou masquer la barre de traitement</translation>
    </message>
    <message>
        <source>&amp;Measure Bar</source>
        <translation>Barre de &amp;mesure</translation>
    </message>
    <message>
        <source>Show or hide the measure bar</source>
        <translation>Afficher ou masquer la barre de mesure</translation>
    </message>
    <message>
        <source>&amp;Full Screen</source>
        <translation>&amp;Plein écran</translation>
    </message>
    <message>
        <source>Toggles full screen mode On and Off</source>
        <translation>Active ou désactive le mode plein écran</translation>
    </message>
    <message>
        <source>Fullscreen camera video</source>
        <translation>Vidéo de la caméra en plein écran</translation>
    </message>
    <message>
        <source>&amp;Adjust</source>
        <translation>&amp;Réglage</translation>
    </message>
    <message>
        <source>Show video adjusting dialog</source>
        <translation>Afficher le réglage de la vidéo</translation>
    </message>
    <message>
        <source>&amp;Enable</source>
        <translation>&amp;Activer</translation>
    </message>
    <message>
        <source>Enable realtime process</source>
        <translation>Activer le traitement en temps réel</translation>
    </message>
    <message>
        <source>Flip &amp;Horizontal</source>
        <translation>Retourner &amp;horizontalement</translation>
    </message>
    <message>
        <source>Flip image horizontal </source>
        <translation>Retourner l&apos;image horizontalement</translation>
    </message>
    <message>
        <source>Flip &amp;Vertical</source>
        <translation>Retourner &amp;verticalement</translation>
    </message>
    <message>
        <source>Flip image vertical</source>
        <translation>Retourner l&apos;image verticalement</translation>
    </message>
    <message>
        <source>&amp;Gray</source>
        <translation>&amp;Gris</translation>
    </message>
    <message>
        <source>Gray image</source>
        <translation>Image en niveaux de gris</translation>
    </message>
    <message>
        <source>&amp;Negative</source>
        <translation>&amp;Négatif</translation>
    </message>
    <message>
        <source>Negative image</source>
        <translation>Image en négatif</translation>
    </message>
    <message>
        <source>&amp;Emboss</source>
        <translation>&amp;Relief</translation>
    </message>
    <message>
        <source>Emboss image</source>
        <translation>Image en relief</translation>
    </message>
    <message>
        <source>&amp;Sharpen</source>
        <translation>&amp;Netteté</translation>
    </message>
    <message>
        <source>Sharpen image</source>
        <translation>Renforcer la netteté de l&apos;image</translation>
    </message>
    <message>
        <source>&amp;Binary</source>
        <translation>&amp;Binarisation</translation>
    </message>
    <message>
        <source>Binary image</source>
        <translation>Image binaire</translation>
    </message>
    <message>
        <source>Mo&amp;ve</source>
        <translation>&amp;Déplacer</translation>
    </message>
    <message>
        <source>Move elements</source>
        <translation>Déplacer les éléments</translation>
    </message>
    <message>
        <source>Point</source>
        <translation>Point</translation>
    </message>
    <message>
        <source>&amp;Line</source>
        <translation>&amp;Ligne</translation>
    </message>
    <message>
        <source>Draw line</source>
        <translation>Tracer une ligne</translation>
    </message>
    <message>
        <source>&amp;Angle</source>
        <translation>&amp;Angle</translation>
    </message>
    <message>
        <source>Draw angle </source>
        <translation>Tracer un angle</translation>
    </message>
    <message>
        <source>&amp;Rect</source>
        <translation>&amp;Rectangle</translation>
    </message>
    <message>
        <source>Draw rect</source>
        <translation>Tracer un rectangle</translation>
    </message>
    <message>
        <source>&amp;Circle</source>
        <translation>&amp;Cercle</translation>
    </message>
    <message>
        <source>Draw circle</source>
        <translation>Tracer un cercle</translation>
    </message>
    <message>
        <source>&amp;TriCircle</source>
        <translation>Cercle à &amp;trois points</translation>
    </message>
    <message>
        <source>Draw tricircle</source>
        <translation>Tracer un cercle par trois points</translation>
    </message>
    <message>
        <source>&amp;Polygon</source>
        <translation>&amp;Polygone</translation>
    </message>
    <message>
        <source>Draw polygon</source>
        <translation>Tracer un polygone</translation>
    </message>
    <message>
        <source>Count&amp;ing</source>
        <translation>C&amp;omptage</translation>
    </message>
    <message>
        <source>Draw counting</source>
        <translation>Marquer pour compter</translation>
    </message>
    <message>
        <source>&amp;Delete</source>
        <translation>&amp;Supprimer</translation>
    </message>
    <message>
        <source>Delete one element</source>
        <translation>Supprimer un élément</translation>
    </message>
    <message>
        <source>Delete&amp;All</source>
        <translation>&amp;Tout supprimer</translation>
    </message>
    <message>
        <source>Delete all elements</source>
        <translation>Supprimer tous les éléments</translation>
    </message>
    <message>
        <source>Calibratio&amp;n</source>
        <translation>Étalon&amp;nage</translation>
    </message>
    <message>
        <source>Calibration</source>
        <translation>Étalonnage</translation>
    </message>
    <message>
        <source>&amp;Setting</source>
        <translation>&amp;Réglages</translation>
    </message>
    <message>
        <source>Measure setting</source>
        <translation>Réglages de mesure</translation>
    </message>
    <message>
        <source>Ex&amp;port data</source>
        <translation>Ex&amp;porter les données</translation>
    </message>
    <message>
        <source>Export measurement data to csv file</source>
        <translation>Exporter les mesures dans un fichier CSV</translation>
    </message>
    <message>
        <source>A&amp;rrow</source>
        <translation>&amp;Flèche</translation>
    </message>
    <message>
        <source>Draw Arrow Annotation</source>
        <translation>Tracer une flèche</translation>
    </message>
    <message>
        <source>&amp;Text</source>
        <translation>Te&amp;xte</translation>
    </message>
    <message>
        <source>Draw Text Annotation</source>
        <translation>Ajouter un texte</translation>
    </message>
    <message>
        <source>&amp;Cross Line</source>
        <translation>&amp;Réticule</translation>
    </message>
    <message>
        <source>Solid crossline</source>
        <translation>Réticule plein</translation>
    </message>
    <message>
        <source>Dashed C&amp;ross Line</source>
        <translation>Réticule en &amp;pointillés</translation>
    </message>
    <message>
        <source>Dashed crossline</source>
        <translation>Réticule en pointillés</translation>
    </message>
    <message>
        <source>Video Capture &amp;Device...</source>
        <translation>&amp;Périphérique de capture vidéo...</translation>
    </message>
    <message>
        <source>Change video capture device</source>
        <translation>Changer de périphérique de capture vidéo</translation>
    </message>
    <message>
        <source>Video &amp;Resolution</source>
        <translation>&amp;Résolution vidéo</translation>
    </message>
    <message>
        <source>Setting video capture properties</source>
        <translation>Régler les propriétés de capture vidéo</translation>
    </message>
    <message>
        <source>Video &amp;Properties</source>
        <translation>Propriétés &amp;vidéo</translation>
    </message>
    <message>
        <source>Adjusting video capture filter properties</source>
        <translation>Régler les propriétés du filtre de capture vidéo</translation>
    </message>
    <message>
        <source>Capture picture to an active view</source>
        <translation>Capturer une image dans une nouvelle fenêtre</translation>
    </message>
    <message>
        <source>Preview camera device</source>
        <translation>Aperçu de la caméra</translation>
    </message>
    <message>
        <source>Pause the camera video</source>
        <translation>Mettre en pause la vidéo de la caméra</translation>
    </message>
    <message>
        <source>Zoom display</source>
        <translation>Zoom de l&apos;affichage</translation>
    </message>
    <message>
        <source>&amp;Cascade</source>
        <translation>&amp;Cascade</translation>
    </message>
    <message>
        <source>Tile &amp;Horizontal</source>
        <translation>Mosaïque &amp;horizontale</translation>
    </message>
    <message>
        <source>Tile &amp;Vertical</source>
        <translation>Mosaïque &amp;verticale</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Aide</translation>
    </message>
    <message>
        <source>How to use</source>
        <translation>Mode d&apos;emploi</translation>
    </message>
    <message>
        <source>&amp;About...</source>
        <translation>À &amp;propos...</translation>
    </message>
    <message>
        <source>Open &amp;Picture Folder</source>
        <translation>Ouvrir le dossier des &amp;images</translation>
    </message>
    <message>
        <source>Open pictures&apos; saved folder</source>
        <translation>Ouvrir le dossier des images enregistrées</translation>
    </message>
    <message>
        <source>Recent File</source>
        <translation>Fichier récent</translation>
    </message>
    <message>
        <source>Open this document</source>
        <translation>Ouvrir ce document</translation>
    </message>
    <message>
        <source>Display full pages</source>
        <translation>Afficher des pages entières</translation>
    </message>
    <message>
        <source>Help content</source>
        <translation>Contenu de l&apos;aide</translation>
    </message>
    <message>
        <source>Print and &amp;Help Bar</source>
        <translation>Barre d&apos;impression et d&apos;&amp;aide</translation>
    </message>
    <message>
        <source>Show or hide the print and help bar</source>
        <translation>Afficher ou masquer la barre d&apos;impression et d&apos;aide</translation>
    </message>
    <message>
        <source>&amp;Rgb</source>
        <translation>&amp;RVB</translation>
    </message>
    <message>
        <source>Rgb adjustment</source>
        <translation>Réglage RVB</translation>
    </message>
    <message>
        <source>Record camera video to file</source>
        <translation>Enregistrer la vidéo de la caméra dans un fichier</translation>
    </message>
    <message>
        <source>Show the real-time processing settings</source>
        <translation>Afficher les réglages du traitement en temps réel</translation>
    </message>
    <message>
        <source>&amp;Save	Ctrl+S</source>
        <translation>&amp;Enregistrer	Ctrl+S</translation>
    </message>
    <message>
        <source>Save the active image</source>
        <translation>Enregistrer l’image active</translation>
    </message>
    <message>
        <source>Save &amp;As...</source>
        <translation>Enregistrer &amp;sous...</translation>
    </message>
    <message>
        <source>Save the active image with a new name</source>
        <translation>Enregistrer l’image active sous un autre nom</translation>
    </message>
    <message>
        <source>Save plus measure</source>
        <translation>Enregistrer avec les mesures</translation>
    </message>
    <message>
        <source>Save only image</source>
        <translation>Enregistrer l’image seule</translation>
    </message>
    <message>
        <source>Save As only image</source>
        <translation>Enregistrer sous, image seule</translation>
    </message>
    <message>
        <source>Save As plus measure</source>
        <translation>Enregistrer sous, avec les mesures</translation>
    </message>
    <message>
        <source>Save &amp;Option</source>
        <translation>&amp;Options d’enregistrement</translation>
    </message>
    <message>
        <source>Setting save options</source>
        <translation>Régler les options d’enregistrement</translation>
    </message>
    <message>
        <source>Set resolution</source>
        <translation>Définir la résolution</translation>
    </message>
    <message>
        <source>Interval capture frames</source>
        <translation>Capturer des images à intervalles</translation>
    </message>
    <message>
        <source>&amp;Undo	Ctrl+Z</source>
        <translation>&amp;Annuler	Ctrl+Z</translation>
    </message>
    <message>
        <source>Undo the last action</source>
        <translation>Annuler la dernière action</translation>
    </message>
    <message>
        <source>&amp;Redo	Ctrl+Y</source>
        <translation>&amp;Rétablir	Ctrl+Y</translation>
    </message>
    <message>
        <source>Redo the previously undone action</source>
        <translation>Rétablir l&apos;action annulée</translation>
    </message>
    <message>
        <source>Snap to &amp;Edges</source>
        <translation>Accrocher aux &amp;bords</translation>
    </message>
    <message>
        <source>Put the ends of lines and the rims of circles on the nearest edge of the picture</source>
        <translation>Placer les extrémités des lignes et le bord des cercles sur le contour le plus proche de l&apos;image</translation>
    </message>
    <message>
        <source>Analyze &amp;Particles...</source>
        <translation>Analyser les &amp;particules...</translation>
    </message>
    <message>
        <source>Count and size the particles of the picture</source>
        <translation>Compter et mesurer les particules de l&apos;image</translation>
    </message>
    <message>
        <source>Export ImageJ &amp;ROIs...</source>
        <translation>Exporter les &amp;ROI ImageJ...</translation>
    </message>
    <message>
        <source>Save the shapes as a ROI set that ImageJ opens and measures</source>
        <translation>Enregistrer les formes comme ensemble de ROI qu&apos;ImageJ ouvre et mesure</translation>
    </message>
    <message>
        <source>&amp;Import ImageJ ROIs...</source>
        <translation>&amp;Importer des ROI ImageJ...</translation>
    </message>
    <message>
        <source>Add the ROIs of an ImageJ ROI set or .roi file</source>
        <translation>Ajouter les ROI d&apos;un ensemble de ROI ImageJ ou d&apos;un fichier .roi</translation>
    </message>
    <message>
        <source>&amp;Focus Stack Pictures...</source>
        <translation>&amp;Empiler des images de mise au point...</translation>
    </message>
    <message>
        <source>Fuse pictures taken at different focus into one picture sharp everywhere</source>
        <translation>Fusionner des images prises à des mises au point différentes en une image nette partout</translation>
    </message>
    <message>
        <source>S&amp;titch Pictures...</source>
        <translation>A&amp;ssembler des images...</translation>
    </message>
    <message>
        <source>Stitch overlapping pictures of a scan into one</source>
        <translation>Assembler en une seule les images d&apos;un balayage qui se recouvrent</translation>
    </message>
    <message>
        <source>Hist&amp;ogram</source>
        <translation>Hist&amp;ogramme</translation>
    </message>
    <message>
        <source>Show or hide the live histogram</source>
        <translation>Afficher ou masquer l&apos;histogramme en direct</translation>
    </message>
    <message>
        <source>&amp;Flat-Field...</source>
        <translation>Champ &amp;plat...</translation>
    </message>
    <message>
        <source>Take a blank field to even out the shading</source>
        <translation>Prendre un champ vide pour égaliser l&apos;éclairage</translation>
    </message>
    <message>
        <source>&amp;White Balance</source>
        <translation>Balance des &amp;blancs</translation>
    </message>
    <message>
        <source>Make the rectangle drawn over a neutral area gray</source>
        <translation>Rendre gris le rectangle tracé sur une zone neutre</translation>
    </message>
    <message>
        <source>Focus Pea&amp;king</source>
        <translation>Focus pea&amp;king</translation>
    </message>
    <message>
        <source>Mark the edges in focus on the live picture</source>
        <translation>Marquer les contours nets sur l&apos;image en direct</translation>
    </message>
    <message>
        <source>Focus Peaking &amp;Color...</source>
        <translation>&amp;Couleur du focus peaking...</translation>
    </message>
    <message>
        <source>Choose the color of the focus marks</source>
        <translation>Choisir la couleur des marques de netteté</translation>
    </message>
    <message>
        <source>F&amp;ocus Stack</source>
        <translation>Empilement de mise au p&amp;oint</translation>
    </message>
    <message>
        <source>Start fusing the live frames while you sweep the focus; again to finish</source>
        <translation>Commencer à fusionner les images en direct pendant que vous balayez la mise au point ; de nouveau pour terminer</translation>
    </message>
    <message>
        <source>&amp;Cancel Focus Stack</source>
        <translation>A&amp;nnuler l&apos;empilement de mise au point</translation>
    </message>
    <message>
        <source>Stop focus stacking and keep nothing</source>
        <translation>Arrêter l&apos;empilement sans rien garder</translation>
    </message>
    <message>
        <source>&amp;Mosaic</source>
        <translation>&amp;Mosaïque</translation>
    </message>
    <message>
        <source>Stitch the live picture into one as the stage moves</source>
        <translation>Assembler l&apos;image en direct en une seule à mesure que la platine se déplace</translation>
    </message>
</context>
<context>
    <name>CommandLine</name>
    <message>
        <source>Use the simulated camera instead of a real one.</source>
        <translation>Utiliser la caméra simulée au lieu d&apos;une vraie caméra.</translation>
    </message>
    <message>
        <source>Show this help.</source>
        <translation>Afficher cette aide.</translation>
    </message>
    <message>
        <source>Measure on a microscope camera&apos;s live picture.</source>
        <translation>Mesurer sur l&apos;image en direct d&apos;une caméra de microscope.</translation>
    </message>
    <message>
        <source>Picture file to open.</source>
        <translation>Fichier image à ouvrir.</translation>
    </message>
</context>
<context>
    <name>DlgSelectFile</name>
    <message>
        <source>Open</source>
        <translation>Ouvrir</translation>
    </message>
    <message>
        <source>No preview</source>
        <translation>Pas d&apos;aperçu</translation>
    </message>
    <message>
        <source>%1 x %2, %3 bits</source>
        <translation>%1 x %2, %3 bits</translation>
    </message>
</context>
<context>
    <name>FCObjImage</name>
    <message>
        <source>Invalid picture size or depth</source>
        <translation>Taille ou profondeur d&apos;image non valide</translation>
    </message>
    <message>
        <source>Not enough memory for the picture</source>
        <translation>Mémoire insuffisante pour l&apos;image</translation>
    </message>
    <message>
        <source>Invalid picture size</source>
        <translation>Taille d&apos;image non valide</translation>
    </message>
    <message>
        <source>Not enough memory to resize the picture</source>
        <translation>Mémoire insuffisante pour redimensionner l&apos;image</translation>
    </message>
    <message>
        <source>No picture</source>
        <translation>Pas d&apos;image</translation>
    </message>
    <message>
        <source>The picture is too large</source>
        <translation>L&apos;image est trop grande</translation>
    </message>
    <message>
        <source>No picture to save</source>
        <translation>Pas d&apos;image à enregistrer</translation>
    </message>
</context>
<context>
    <name>FocusStack</name>
    <message>
        <source>The picture is empty.</source>
        <translation>L&apos;image est vide.</translation>
    </message>
    <message>
        <source>The picture is %1 x %2 pixels, the first of the series %3 x %4.</source>
        <translation>L&apos;image fait %1 x %2 pixels, la première de la série %3 x %4.</translation>
    </message>
    <message>
        <source>The series is full.</source>
        <translation>La série est pleine.</translation>
    </message>
</context>
<context>
    <name>GraticuleDetector</name>
    <message>
        <source>1 px = %1 µm ± %2</source>
        <translation>1 px = %1 µm ± %2</translation>
    </message>
    <message numerus="yes">
        <source>%n ticks, scale at %1°</source>
        <translation>
            <numerusform>
            </numerusform>
            <numerusform></numerusform>
        </translation>
    </message>
</context>
<context>
    <name>LiveFocusStack</name>
    <message>
        <source>frame 1</source>
        <translation>image 1</translation>
    </message>
    <message>
        <source>frame %1</source>
        <translation>image %1</translation>
    </message>
</context>
<context>
    <name>Menu</name>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Fichier</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>&amp;Affichage</translation>
    </message>
    <message>
        <source>&amp;Measure</source>
        <translation>&amp;Mesure</translation>
    </message>
    <message>
        <source>&amp;Process</source>
        <translation>&amp;Traitement</translation>
    </message>
    <message>
        <source>V&amp;ideo</source>
        <translation>&amp;Vidéo</translation>
    </message>
    <message>
        <source>&amp;Window</source>
        <translation>F&amp;enêtre</translation>
    </message>
    <message>
        <source>&amp;Language</source>
        <translation>&amp;Langue</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Aide</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>&amp;Édition</translation>
    </message>
</context>
<context>
    <name>Stitcher</name>
    <message>
        <source>it overlaps none of the pictures placed before it</source>
        <translation>elle ne recouvre aucune des images placées avant elle</translation>
    </message>
    <message>
        <source>the picture is empty or too small</source>
        <translation>l&apos;image est vide ou trop petite</translation>
    </message>
    <message>
        <source>the pictures it overlaps disagree about where it lies</source>
        <translation>les images qu&apos;elle recouvre ne s&apos;accordent pas sur sa position</translation>
    </message>
</context>
<context>
    <name>SvrFile</name>
    <message>
        <source>Cannot open %1.
%2</source>
        <translation>Impossible d&apos;ouvrir %1.
%2</translation>
    </message>
    <message>
        <source>Cannot read %1.
%2</source>
        <translation>Impossible de lire %1.
%2</translation>
    </message>
    <message>
        <source>Cannot write %1.
%2</source>
        <translation>Impossible d&apos;écrire %1.
%2</translation>
    </message>
</context>
<context>
    <name>ToolBar</name>
    <message>
        <source>Standard</source>
        <translation>Standard</translation>
    </message>
    <message>
        <source>Measure</source>
        <translation>Mesure</translation>
    </message>
    <message>
        <source>Process</source>
        <translation>Traitement</translation>
    </message>
    <message>
        <source>Print and Help</source>
        <translation>Impression et aide</translation>
    </message>
</context>
</TS>
