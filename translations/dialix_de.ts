<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>ControlDialix</name>
    <message>
        <source>Dialix %1</source>
        <translation>Dialix %1</translation>
    </message>
</context>
<context>
    <name>DialixControl</name>
    <message>
        <source>RX </source>
        <translation>RX </translation>
    </message>
    <message>
        <source>Failed to open </source>
        <translation>Öffnen von </translation>
    </message>
    <message>
        <source> for PTT transfer!</source>
        <translation> für die PTT-Weiterleitung fehlgeschlagen!</translation>
    </message>
</context>
<context>
    <name>DialixOptions</name>
    <message>
        <source>Form</source>
        <translation>Formular</translation>
    </message>
    <message>
        <source>NO</source>
        <translation>Frei</translation>
    </message>
    <message>
        <source>Rotate left or right for change VFO frequency</source>
        <translation>Nach links oder rechts drehen, um die VFO-Frequenz zu ändern</translation>
    </message>
    <message>
        <source>Enable</source>
        <translation>Aktivieren</translation>
    </message>
    <message>
        <source>Use IF</source>
        <translation>ZF verwenden</translation>
    </message>
    <message>
        <source>Use IF as RIT</source>
        <translation>ZF als RIT verwenden</translation>
    </message>
    <message>
        <source>Use IF as XIT</source>
        <translation>ZF als XIT verwenden</translation>
    </message>
    <message>
        <source>VFO B</source>
        <translation>VFO B</translation>
    </message>
    <message>
        <source>Key Led</source>
        <translation>Tasten-LED</translation>
    </message>
    <message>
        <source>Encoder Led</source>
        <translation>Drehgeber-LED</translation>
    </message>
    <message>
        <source>No transfer PTT</source>
        <translation>PTT nicht weiterleiten</translation>
    </message>
    <message>
        <source>PTT to ZLI</source>
        <translation>PTT an ZLI</translation>
    </message>
    <message>
        <source>PTT to COM port</source>
        <translation>PTT an COM-Port</translation>
    </message>
    <message>
        <source>Transfer PTT to COM</source>
        <translation>PTT an COM weiterleiten</translation>
    </message>
    <message>
        <source>Port name:</source>
        <translation>Portname:</translation>
    </message>
    <message>
        <source>DTR</source>
        <translation>DTR</translation>
    </message>
    <message>
        <source>RTS</source>
        <translation>RTS</translation>
    </message>
    <message>
        <source>Volume:</source>
        <translation>Lautstärke:</translation>
    </message>
    <message>
        <source>Mic Gain:</source>
        <translation>Mikrofonpegel:</translation>
    </message>
    <message>
        <source>SQL:</source>
        <translation>Rauschsperre:</translation>
    </message>
    <message>
        <source>Filter High:</source>
        <translation>Filter oben:</translation>
    </message>
    <message>
        <source>Filter Low:</source>
        <translation>Filter unten:</translation>
    </message>
    <message>
        <source>Filter Width:</source>
        <translation>Filterbreite:</translation>
    </message>
    <message>
        <source>Filter Shift:</source>
        <translation>Filterverschiebung:</translation>
    </message>
    <message>
        <source>Drive:</source>
        <translation>Sendepegel:</translation>
    </message>
    <message>
        <source>RF Gain:</source>
        <translation>HF-Verstärkung:</translation>
    </message>
    <message>
        <source>Unused</source>
        <translation>Unbelegt</translation>
    </message>
    <message>
        <source>Band Up</source>
        <translation>Band hoch</translation>
    </message>
    <message>
        <source>BU</source>
        <translation>B+</translation>
    </message>
    <message>
        <source>Band Down</source>
        <translation>Band runter</translation>
    </message>
    <message>
        <source>BD</source>
        <translation>B-</translation>
    </message>
    <message>
        <source>Mode Up</source>
        <translation>Betriebsart hoch</translation>
    </message>
    <message>
        <source>MU</source>
        <translation>BA+</translation>
    </message>
    <message>
        <source>Mode Down</source>
        <translation>Betriebsart runter</translation>
    </message>
    <message>
        <source>MD</source>
        <translation>BA-</translation>
    </message>
    <message>
        <source>Volume Up</source>
        <translation>Lauter</translation>
    </message>
    <message>
        <source>V+</source>
        <translation>L+</translation>
    </message>
    <message>
        <source>Volume Down</source>
        <translation>Leiser</translation>
    </message>
    <message>
        <source>V-</source>
        <translation>L-</translation>
    </message>
    <message>
        <source>Mute</source>
        <translation>Stumm</translation>
    </message>
    <message>
        <source>BIN</source>
        <translation>BIN</translation>
    </message>
    <message>
        <source>NR</source>
        <translation>NR</translation>
    </message>
    <message>
        <source>ANF</source>
        <translation>ANF</translation>
    </message>
    <message>
        <source>NB1</source>
        <translation>NB1</translation>
    </message>
    <message>
        <source>NB2</source>
        <translation>NB2</translation>
    </message>
    <message>
        <source>Filter Up</source>
        <translation>Filter hoch</translation>
    </message>
    <message>
        <source>FU</source>
        <translation>F+</translation>
    </message>
    <message>
        <source>Filter Down</source>
        <translation>Filter runter</translation>
    </message>
    <message>
        <source>FD</source>
        <translation>F-</translation>
    </message>
    <message>
        <source>SQL</source>
        <translation>SQL</translation>
    </message>
    <message>
        <source>PA</source>
        <translation>PA</translation>
    </message>
    <message>
        <source>Agc Up</source>
        <translation>AGC hoch</translation>
    </message>
    <message>
        <source>AgcU</source>
        <translation>AGC+</translation>
    </message>
    <message>
        <source>Agc Down</source>
        <translation>AGC runter</translation>
    </message>
    <message>
        <source>AgcD</source>
        <translation>AGC-</translation>
    </message>
    <message>
        <source>Preamp Up</source>
        <translation>Vorverstärker hoch</translation>
    </message>
    <message>
        <source>PrU</source>
        <translation>VV+</translation>
    </message>
    <message>
        <source>Preamp Down</source>
        <translation>Vorverstärker runter</translation>
    </message>
    <message>
        <source>PrD</source>
        <translation>VV-</translation>
    </message>
    <message>
        <source>Step Up</source>
        <translation>Schritt hoch</translation>
    </message>
    <message>
        <source>StU</source>
        <translation>Sch+</translation>
    </message>
    <message>
        <source>Step Down</source>
        <translation>Schritt runter</translation>
    </message>
    <message>
        <source>StD</source>
        <translation>Sch-</translation>
    </message>
    <message>
        <source>Zoom In</source>
        <translation>Vergrößern</translation>
    </message>
    <message>
        <source>ZM+</source>
        <translation>ZM+</translation>
    </message>
    <message>
        <source>Zoom Out</source>
        <translation>Verkleinern</translation>
    </message>
    <message>
        <source>ZM-</source>
        <translation>ZM-</translation>
    </message>
    <message>
        <source>MOX</source>
        <translation>MOX</translation>
    </message>
    <message>
        <source>Tune</source>
        <translation>Abstimmen</translation>
    </message>
    <message>
        <source>Tun</source>
        <translation>Abst</translation>
    </message>
    <message>
        <source>WF</source>
        <translation>WF</translation>
    </message>
    <message>
        <source>Power On/Off</source>
        <translation>Ein/Aus</translation>
    </message>
    <message>
        <source>PWR</source>
        <translation>E/A</translation>
    </message>
    <message>
        <source>Switch DDS/IF</source>
        <translation>DDS/ZF umschalten</translation>
    </message>
    <message>
        <source>D/I</source>
        <translation>D/Z</translation>
    </message>
    <message>
        <source>Switch Receiver</source>
        <translation>Empfänger wechseln</translation>
    </message>
    <message>
        <source>SR</source>
        <translation>EW</translation>
    </message>
    <message>
        <source>Change VFOA/VFOB</source>
        <translation>VFO A/VFO B wechseln</translation>
    </message>
    <message>
        <source>A/B</source>
        <translation>A/B</translation>
    </message>
    <message>
        <source>SubRX On/Off</source>
        <translation>SubRX ein/aus</translation>
    </message>
    <message>
        <source>VfB</source>
        <translation>VfB</translation>
    </message>
    <message>
        <source>RIT On/Off</source>
        <translation>RIT ein/aus</translation>
    </message>
    <message>
        <source>Rit</source>
        <translation>Rit</translation>
    </message>
    <message>
        <source>RIT Reset</source>
        <translation>RIT zurücksetzen</translation>
    </message>
    <message>
        <source>Rt0</source>
        <translation>Rt0</translation>
    </message>
    <message>
        <source>IF as RIT</source>
        <translation>ZF als RIT</translation>
    </message>
    <message>
        <source>IfR</source>
        <translation>ZfR</translation>
    </message>
    <message>
        <source>XIT On/Off</source>
        <translation>XIT ein/aus</translation>
    </message>
    <message>
        <source>Xit</source>
        <translation>Xit</translation>
    </message>
    <message>
        <source>XIT Reset</source>
        <translation>XIT zurücksetzen</translation>
    </message>
    <message>
        <source>Xt0</source>
        <translation>Xt0</translation>
    </message>
    <message>
        <source>Split</source>
        <translation>Split</translation>
    </message>
    <message>
        <source>Spl</source>
        <translation>Spl</translation>
    </message>
    <message>
        <source>TX / Play</source>
        <translation>TX / Wiedergabe</translation>
    </message>
    <message>
        <source>T/P</source>
        <translation>T/W</translation>
    </message>
    <message>
        <source>Voice recording</source>
        <translation>Sprachaufnahme</translation>
    </message>
    <message>
        <source>V/R</source>
        <translation>Aufn</translation>
    </message>
    <message>
        <source>RX ANT</source>
        <translation>RX-Antenne</translation>
    </message>
    <message>
        <source>RxA</source>
        <translation>RxA</translation>
    </message>
    <message>
        <source>LOCK</source>
        <translation>Sperre</translation>
    </message>
    <message>
        <source>Lock</source>
        <translation>Sperre</translation>
    </message>
    <message>
        <source>A-&gt;B</source>
        <translation>A-&gt;B</translation>
    </message>
    <message>
        <source>B-&gt;A</source>
        <translation>B-&gt;A</translation>
    </message>
    <message>
        <source>B&lt;-&gt;A</source>
        <translation>B&lt;-&gt;A</translation>
    </message>
    <message>
        <source>Swap</source>
        <translation>Tausch</translation>
    </message>
    <message>
        <source>APF</source>
        <translation>APF</translation>
    </message>
    <message>
        <source>Listen both RX1, RX2</source>
        <translation>RX1 und RX2 hören</translation>
    </message>
    <message>
        <source>V.D</source>
        <translation>H.D</translation>
    </message>
    <message>
        <source>Listen RX1 only</source>
        <translation>Nur RX1 hören</translation>
    </message>
    <message>
        <source>V.RX1</source>
        <translation>H.RX1</translation>
    </message>
    <message>
        <source>Listen RX2 only</source>
        <translation>Nur RX2 hören</translation>
    </message>
    <message>
        <source>V.RX2</source>
        <translation>H.RX2</translation>
    </message>
    <message>
        <source>Listen RX1 in left channel - RX2 in right</source>
        <translation>RX1 links - RX2 rechts hören</translation>
    </message>
    <message>
        <source>V.R1L</source>
        <translation>H.R1L</translation>
    </message>
    <message>
        <source>Listen RX1 in right channel - RX2 in left</source>
        <translation>RX1 rechts - RX2 links hören</translation>
    </message>
    <message>
        <source>V.R1R</source>
        <translation>H.R1R</translation>
    </message>
    <message>
        <source>Switch RX and mute former</source>
        <translation>RX wechseln und bisherigen stummschalten</translation>
    </message>
    <message>
        <source>SR.M</source>
        <translation>EW.S</translation>
    </message>
    <message>
        <source>RX2 On/Off</source>
        <translation>RX2 ein/aus</translation>
    </message>
    <message>
        <source>RX2</source>
        <translation>RX2</translation>
    </message>
    <message>
        <source>Listen both VFO A/B</source>
        <translation>VFO A und B hören</translation>
    </message>
    <message>
        <source>V.AB</source>
        <translation>H.AB</translation>
    </message>
    <message>
        <source>Listen VFO A only</source>
        <translation>Nur VFO A hören</translation>
    </message>
    <message>
        <source>V.A</source>
        <translation>H.A</translation>
    </message>
    <message>
        <source>Listen VFO B only</source>
        <translation>Nur VFO B hören</translation>
    </message>
    <message>
        <source>V.B</source>
        <translation>H.B</translation>
    </message>
    <message>
        <source>Listen VFO A in left channel - VFO B in right</source>
        <translation>VFO A links - VFO B rechts hören</translation>
    </message>
    <message>
        <source>V.AL</source>
        <translation>H.AL</translation>
    </message>
    <message>
        <source>Listen VFO A in right channel - VFO B in left</source>
        <translation>VFO A rechts - VFO B links hören</translation>
    </message>
    <message>
        <source>V.AR</source>
        <translation>H.AR</translation>
    </message>
    <message>
        <source>VOX</source>
        <translation>VOX</translation>
    </message>
    <message>
        <source>NF</source>
        <translation>Notch</translation>
    </message>
    <message>
        <source>Volume</source>
        <translation>Lautstärke</translation>
    </message>
    <message>
        <source>Vol</source>
        <translation>Lst</translation>
    </message>
    <message>
        <source>Mic Gain</source>
        <translation>Mikrofonpegel</translation>
    </message>
    <message>
        <source>Mic</source>
        <translation>Mik</translation>
    </message>
    <message>
        <source>Filter Low</source>
        <translation>Filter unten</translation>
    </message>
    <message>
        <source>FL</source>
        <translation>F.u</translation>
    </message>
    <message>
        <source>Filter High</source>
        <translation>Filter oben</translation>
    </message>
    <message>
        <source>FH</source>
        <translation>F.o</translation>
    </message>
    <message>
        <source>Filter Width</source>
        <translation>Filterbreite</translation>
    </message>
    <message>
        <source>FW</source>
        <translation>FB</translation>
    </message>
    <message>
        <source>Filter Shift</source>
        <translation>Filterverschiebung</translation>
    </message>
    <message>
        <source>FS</source>
        <translation>FV</translation>
    </message>
    <message>
        <source>Drive</source>
        <translation>Sendepegel</translation>
    </message>
    <message>
        <source>Drv</source>
        <translation>Pgl</translation>
    </message>
    <message>
        <source>IF</source>
        <translation>ZF</translation>
    </message>
    <message>
        <source>RF Gain</source>
        <translation>HF-Verstärkung</translation>
    </message>
    <message>
        <source>RF</source>
        <translation>HF</translation>
    </message>
    <message>
        <source>CW Speed</source>
        <translation>CW-Tempo</translation>
    </message>
    <message>
        <source>CWS</source>
        <translation>CWT</translation>
    </message>
    <message>
        <source>RIT Offset</source>
        <translation>RIT-Ablage</translation>
    </message>
    <message>
        <source>XIT Offset</source>
        <translation>XIT-Ablage</translation>
    </message>
    <message>
        <source>Main</source>
        <translation>Allgemein</translation>
    </message>
    <message>
        <source>VFO/RX2</source>
        <translation>VFO/RX2</translation>
    </message>
    <message>
        <source>Audio</source>
        <translation>Audio</translation>
    </message>
    <message>
        <source>DSP</source>
        <translation>DSP</translation>
    </message>
</context>
</TS>
