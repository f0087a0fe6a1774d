<?xml version="1.0" encoding="ISO-8859-1"?>
<!-- Turns an XML result document into the page of results: the running text
     of the "data" elements as preformatted text, the title block as a
     heading, citations in italics, anchors as link targets for the tree menu,
     and every other element as a table whose rows are its lines and whose
     cells are the tab-separated fields of a line. XSLT 1.0 only. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="html" encoding="ISO-8859-1" indent="no"/>

  <xsl:variable name="newline" select="'&#10;'"/>
  <xsl:variable name="tab" select="'&#9;'"/>

  <xsl:template match="/">
    <html>
      <head>
        <title>Morvalin results</title>
        <style type="text/css">
          body { background-color: white; font-size: 8pt; font-family: 'Courier New', monospace; }
          pre { margin: 0; font-family: 'Courier New', monospace; font-size: 8pt; }
          h2.header { font-family: verdana, helvetica, sans-serif; font-size: 12pt; margin: 6px 0; }
          div.reference { font-style: italic; margin-left: 6em; }
          table.result { border-collapse: collapse; margin: 4px 0 4px 1em; font-size: 8pt; }
          table.result td { border: 1px solid #c8d0d8; padding: 1px 6px; text-align: right;
                            font-family: 'Courier New', monospace; white-space: pre; }
          table.result tr:first-child td { background: #eef2f6; font-weight: bold; }
          table.result caption { text-align: left; color: #607080; font-size: 7pt; }
        </style>
      </head>
      <body>
        <div id="mrvDocument"><xsl:apply-templates select="Morvalin/node()"/></div>
      </body>
    </html>
  </xsl:template>

  <!-- Running text. -->
  <xsl:template match="data">
    <pre class="data"><xsl:value-of select="."/></pre>
  </xsl:template>

  <!-- Elements of plain text lines: the heading of a run and the settings report. -->
  <xsl:template match="run|title">
    <pre class="{name()}"><xsl:value-of select="."/></pre>
  </xsl:template>

  <xsl:template match="header">
    <h2 class="header"><xsl:value-of select="normalize-space(.)"/></h2>
  </xsl:template>

  <xsl:template match="Reference">
    <div class="reference"><xsl:value-of select="."/></div>
  </xsl:template>

  <xsl:template match="A">
    <a name="{@NAME}" id="{@NAME}"></a>
  </xsl:template>

  <!-- Every other element is a table. -->
  <xsl:template match="*">
    <table class="result">
      <caption>
        <xsl:value-of select="name()"/>
        <xsl:if test="@pop"> (<xsl:value-of select="@pop"/>)</xsl:if>
      </caption>
      <xsl:call-template name="split">
        <xsl:with-param name="text" select="string(.)"/>
        <xsl:with-param name="separator" select="$newline"/>
      </xsl:call-template>
    </table>
  </xsl:template>

  <xsl:template match="comment()|processing-instruction()"/>

  <!-- Splits `text` at `separator` into table rows (newline) or cells (tab).
       It halves long texts, so that the depth of the recursion grows with the
       logarithm of the number of pieces and large tables stay within the
       processor's limits. -->
  <xsl:template name="split">
    <xsl:param name="text"/>
    <xsl:param name="separator"/>
    <xsl:variable name="middle" select="floor(string-length($text) div 2)"/>
    <xsl:variable name="tail" select="substring($text, $middle + 1)"/>
    <xsl:choose>
      <xsl:when test="not(contains($text, $separator))">
        <xsl:call-template name="piece">
          <xsl:with-param name="text" select="$text"/>
          <xsl:with-param name="separator" select="$separator"/>
        </xsl:call-template>
      </xsl:when>
      <xsl:when test="string-length($text) &gt; 64 and contains($tail, $separator)">
        <xsl:call-template name="split">
          <xsl:with-param name="text"
              select="concat(substring($text, 1, $middle), substring-before($tail, $separator))"/>
          <xsl:with-param name="separator" select="$separator"/>
        </xsl:call-template>
        <xsl:call-template name="split">
          <xsl:with-param name="text" select="substring-after($tail, $separator)"/>
          <xsl:with-param name="separator" select="$separator"/>
        </xsl:call-template>
      </xsl:when>
      <xsl:otherwise>
        <xsl:call-template name="piece">
          <xsl:with-param name="text" select="substring-before($text, $separator)"/>
          <xsl:with-param name="separator" select="$separator"/>
        </xsl:call-template>
        <xsl:call-template name="split">
          <xsl:with-param name="text" select="substring-after($text, $separator)"/>
          <xsl:with-param name="separator" select="$separator"/>
        </xsl:call-template>
      </xsl:otherwise>
    </xsl:choose>
  </xsl:template>

  <!-- One line as a row of cells (empty lines give no row), or one cell. -->
  <xsl:template name="piece">
    <xsl:param name="text"/>
    <xsl:param name="separator"/>
    <xsl:choose>
      <xsl:when test="$separator = $newline">
        <xsl:if test="normalize-space($text) != ''">
          <tr>
            <xsl:call-template name="split">
              <xsl:with-param name="text" select="$text"/>
              <xsl:with-param name="separator" select="$tab"/>
            </xsl:call-template>
          </tr>
        </xsl:if>
      </xsl:when>
      <xsl:otherwise>
        <td><xsl:value-of select="$text"/></td>
      </xsl:otherwise>
    </xsl:choose>
  </xsl:template>
</xsl:stylesheet>
